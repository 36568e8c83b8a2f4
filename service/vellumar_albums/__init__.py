"""An album server for a home network: takes the photos that Vellumar uploads, keeps them and shows them."""
