#pragma once

#include "storage/Row.h"

/// The columns of the catalog's views. Their names are the file format.
namespace props {

// Asset: one row a photo.
inline const c4_IntProp AssetID{"AssetID"};
inline const c4_IntProp LocationType{"LocationType"};
inline const c4_StringProp Location{"Location"};
inline const c4_StringProp Filename{"Filename"};
inline const c4_IntProp RollID{"RollID"};
inline const c4_BytesProp ID{"ID"};
inline const c4_IntProp CachedRating{"CachedRating"};
inline const c4_IntProp CachedDate{"CachedDate"};
inline const c4_IntProp Missing{"Missing"};
inline const c4_IntProp Tossed{"Tossed"};
inline const c4_IntProp ToEmail{"ToEmail"};
inline const c4_IntProp ToRemotePrint{"ToRemotePrint"};

// Stamp: one row a fact about a photo.
inline const c4_IntProp StampType{"StampType"};
inline const c4_StringProp SortedString{"SortedString"};
inline const c4_IntProp IndexInt{"IndexInt"};
inline const c4_IntProp PersonID{"PersonID"};

// People.
inline const c4_StringProp Fullname{"Fullname"};
inline const c4_StringProp Email{"Email"};

// String: the texts that photos share, and the history lists.
inline const c4_IntProp Category{"Category"};
inline const c4_IntProp Key{"Key"};
inline const c4_StringProp String{"String"};
inline const c4_IntProp RefCount{"RefCount"};

// Singletons: one row.
inline const c4_IntProp NextAssetID{"NextAssetID"};
inline const c4_IntProp NextPersonID{"NextPersonID"};
inline const c4_IntProp CurrentPersonID{"CurrentPersonID"};
inline const c4_IntProp NextStringKey{"NextStringKey"};
inline const c4_IntProp DBVersion{"DBVersion"};
inline const c4_IntProp CurrentRollID{"CurrentRollID"};
inline const c4_BytesProp DBGUID{"DBGUID"};
inline const c4_StringProp CurrentPhotoFolder{"CurrentPhotoFolder"};

// StampStruct: one row a type of stamp.
inline const c4_StringProp StampName{"StampName"};
inline const c4_IntProp Sortable{"Sortable"};
inline const c4_IntProp StampStyle{"StampStyle"};
inline const c4_IntProp StampFormat{"StampFormat"};

}  // namespace props
