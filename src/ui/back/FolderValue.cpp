#include "ui/back/FolderValue.h"

#include "discovery/FolderSearch.h"

CFolderValue::CFolderValue(const CAssetRecord& photo) : CFieldValue(FieldNumber::Folder, {}), Photo(photo) {
  Reload();
}

void CFolderValue::Reload() {
  Text = CFolderSearch::GetInstance().GetFolderLabel(Photo.GetFolder());
  TellListener();
}
