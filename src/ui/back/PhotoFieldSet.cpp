#include "ui/back/PhotoFieldSet.h"

#include "ui/back/FolderValue.h"
#include "ui/back/StampValue.h"
#include "ui/back/TitleValue.h"

CPhotoFieldSet::CPhotoFieldSet(const CAssetRecord& photo, const CFieldValue::ChangeNotice& onCommitted)
    : Photo(photo) {
  const auto addStamp = [&](StampId type) {
    Values.push_back(std::make_shared<CStampValue>(photo, type, onCommitted));
  };
  addStamp(StampId::Date);
  addStamp(StampId::Rating);
  addStamp(StampId::Note);
  Values.push_back(std::make_shared<CTitleValue>(photo, onCommitted));
  Values.push_back(std::make_shared<CFolderValue>(photo));
  addStamp(StampId::Thing);
  addStamp(StampId::Event);
  addStamp(StampId::PersonalPlace);
}

CPhotoFieldSet::~CPhotoFieldSet() = default;
