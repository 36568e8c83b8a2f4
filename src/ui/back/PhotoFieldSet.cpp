#include "ui/back/PhotoFieldSet.h"

#include <algorithm>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <utility>

#include "base/Exceptions.h"
#include "base/Paths.h"
#include "catalog/Catalog.h"
#include "catalog/StampList.h"
#include "discovery/FolderSearch.h"
#include "editing/RenamePhotoFile.h"
#include "imaging/ImageFile.h"
#include "platform/Unicode.h"
#include "ui/back/FieldForms.h"
#include "ui/back/TokenList.h"
#include "ui/kit/WaitCursor.h"

namespace {

/// The photo's stamps of one type, as one text, number or date. Of several texts the value is the list of
/// them all.
class CStampValue final : public CFieldValue {
 public:
  CStampValue(const CAssetRecord& photo, StampId type, ChangeNotice onCommitted);

  void Commit() override;
  std::vector<std::string> GetChoices() override;
  std::string GetText() const override { return Text; }
  void SetText(const std::string& text) override;
  std::int32_t GetNumber() const override { return Number; }
  void SetNumber(std::int32_t value) override;
  std::int32_t GetDate() const override { return Time; }
  void SetDate(std::int32_t time) override;
  FieldKind GetKind() const override;
  bool IsMultiple() const override;
  bool HasChoices() const override;
  std::optional<std::int32_t> GetDateFrom(StampId source) const override;
  void Reload() override;

 private:
  std::string ReadText() const;
  void Write();
  void WriteTokens(const CTokenList& tokens);

  CStampList Stamps;
  std::string Text;
  std::int32_t Number = 0;
  std::int32_t Time = 0;
};

CStampValue::CStampValue(const CAssetRecord& photo, StampId type, ChangeNotice onCommitted)
    : CFieldValue(type, std::move(onCommitted)), Stamps(photo.GetStamps(type)) {
  Reload();
}

FieldKind CStampValue::GetKind() const {
  switch (Stamps.GetType().Format) {
    case StampFormat::Text:
    case StampFormat::SharedText:
      return FieldKind::Text;
    case StampFormat::Date:
    case StampFormat::DateWithSource:
      return FieldKind::Date;
    default:
      return FieldKind::Number;
  }
}

bool CStampValue::IsMultiple() const { return Stamps.GetType().HasListOfChoices(); }

bool CStampValue::HasChoices() const {
  return Stamps.GetType().Format == StampFormat::SharedText &&
         CCatalog::GetInstance()->CountStrings(Stamps.GetType().Type) > 0;
}

std::vector<std::string> CStampValue::GetChoices() { return Stamps.GetChoices(); }

std::optional<std::int32_t> CStampValue::GetDateFrom(StampId source) const {
  const CStampList stamps = Stamps.GetAsset().GetStamps(source);
  const std::int32_t time = stamps.Get(0).GetDate();
  return time != 0 ? std::optional(time) : std::nullopt;
}

void CStampValue::SetText(const std::string& text) {
  Text = text;
  TellListener();
}

void CStampValue::SetNumber(std::int32_t value) {
  Number = value;
  TellListener();
}

void CStampValue::SetDate(std::int32_t time) {
  Time = time;
  TellListener();
}

void CStampValue::Reload() {
  const CStamp first = Stamps.Get(0);
  Text = ReadText();
  Number = first.GetNumber();
  Time = 0;
  if (first.IsValid() && first.IsDate()) {
    StampId source = StampId::None;
    Time = first.GetDate(&source);
    Number = static_cast<std::int32_t>(source);
  }
  TellListener();
}

std::string CStampValue::ReadText() const {
  if (GetKind() != FieldKind::Text) return {};
  if (!IsMultiple()) return Stamps.Get(0).GetText();
  CTokenList texts({}, GetListSeparators());
  for (int i = 0; i < Stamps.Count(); ++i) texts.Add(Stamps.Get(i).GetText());
  return texts.GetText();
}

void CStampValue::Commit() {
  if (Stamps.GetAsset().IsValid()) {
    CAutoCommitPause oneChange(*CCatalog::GetInstance());
    Write();
    oneChange.Commit();
  }
  Reload();
  CFieldValue::Commit();
}

void CStampValue::Write() {
  switch (GetKind()) {
    case FieldKind::Text:
      if (IsMultiple()) {
        WriteTokens(CTokenList(Text, GetListSeparators()));
      } else if (Text.empty()) {
        Stamps.Remove(0);
      } else {
        Stamps.SetText(Text, 0);
      }
      break;
    case FieldKind::Number:
      if (Number == 0) {
        Stamps.Remove(0);
      } else {
        Stamps.SetNumber(Number, 0);
      }
      break;
    case FieldKind::Date:
      Stamps.SetDate(Time, 0, static_cast<StampId>(Number));
      break;
  }
}

void CStampValue::WriteTokens(const CTokenList& tokens) {
  int index = 0;
  for (const std::string& token : tokens.GetTokens()) {
    if (index >= Stamps.Count()) {
      Stamps.Add(token);
    } else if (Stamps.Get(index).GetText() != token) {
      Stamps.SetText(token, index);
    }
    ++index;
  }
  while (Stamps.Count() > index) Stamps.Remove(index);
}

constexpr std::string_view kForbidden = "\\/:*?\"<>|";

/// Characters that names can't have on other systems are replaced; so is a leading dot, which would hide the
/// photo from the next search.
void ReplaceForbidden(std::string& name) {
  for (char& c : name) {
    if (kForbidden.find(c) != std::string_view::npos || static_cast<unsigned char>(c) < ' ') c = '_';
  }
  if (name.starts_with('.')) name.front() = '_';
}

/// Without the extension, if the text ends with that or another one of photos. Any other dot belongs to the
/// title.
std::string WithoutPhotoExtension(const std::string& text, const std::string& ownExtension) {
  const std::string extension = GetExtension(text);
  const bool isOne = !extension.empty() && (platform::EqualNoCase(extension, ownExtension) ||
                                            ImageTypeFromExtension(extension) != ImageType::None);
  return isOne ? text.substr(0, text.size() - extension.size()) : text;
}

/// The photo's title, which is the name of its file without the extension. A commit renames the file.
class CTitleValue final : public CFieldValue {
 public:
  CTitleValue(const CAssetRecord& photo, ChangeNotice onCommitted);

  /// Makes the text, without blanks at its ends, a free name for the photo's file, with its extension,
  /// whatever was typed. An empty text is refused.
  bool ValidateText(std::string& text) override;

  /// CException with the reason if the file system refuses the name; the old one stays.
  void Commit() override;
  std::string GetText() const override { return Text; }
  void SetText(const std::string& text) override;
  void Reload() override;

 private:
  CAssetRecord Photo;
  std::string Text;
};

CTitleValue::CTitleValue(const CAssetRecord& photo, ChangeNotice onCommitted)
    : CFieldValue(StampId::Title, std::move(onCommitted)), Photo(photo), Text(photo.GetTitle()) {}

bool CTitleValue::ValidateText(std::string& text) {
  const std::string extension = GetExtension(Photo.GetFilename());
  std::string title(Trimmed(text));
  ReplaceForbidden(title);
  title = Trimmed(WithoutPhotoExtension(title, extension));
  if (title.empty()) return false;
  text = FindFreeName(Photo, title, extension);
  return true;
}

void CTitleValue::SetText(const std::string& text) {
  Text = text;
  TellListener();
}

void CTitleValue::Commit() {
  if (Photo.IsValid()) {
    const CWaitCursor waiting;
    if (const auto error = RenamePhotoFile(Photo, Text)) {
      throw CException("The file \"" + Photo.GetPath() + "\" can't be renamed: " + error.message() + ".");
    }
  }
  Reload();
  CFieldValue::Commit();
}

void CTitleValue::Reload() {
  Text = Photo.GetTitle();
  TellListener();
}

/// The folder that the photo's file is in, by its name for the eye. It can't be changed.
class CFolderValue final : public CFieldValue {
 public:
  explicit CFolderValue(const CAssetRecord& photo);

  std::string GetText() const override { return Text; }
  void Reload() override;

 private:
  CAssetRecord Photo;
  std::string Text;
};

CFolderValue::CFolderValue(const CAssetRecord& photo) : CFieldValue(StampId::Folder, {}), Photo(photo) {
  Reload();
}

void CFolderValue::Reload() {
  Text = CFolderSearch::GetInstance().GetFolderLabel(Photo.GetFolder());
  TellListener();
}

std::shared_ptr<CFieldValue> MakeValue(const CAssetRecord& photo, StampId fact,
                                       const CFieldValue::ChangeNotice& onCommitted) {
  switch (fact) {
    case StampId::Title:
      return std::make_shared<CTitleValue>(photo, onCommitted);
    case StampId::Folder:
      return std::make_shared<CFolderValue>(photo);
    default:
      return std::make_shared<CStampValue>(photo, fact, onCommitted);
  }
}

}  // namespace

CPhotoFieldSet::CPhotoFieldSet(const CAssetRecord& photo, const CFieldValue::ChangeNotice& onCommitted) {
  for (const FieldForm& form : kFieldForms) {
    if (form.Fact != StampId::None) Values.push_back(MakeValue(photo, form.Fact, onCommitted));
  }
}

CFieldValue& CPhotoFieldSet::Get(StampId fact) const {
  return **std::find_if(Values.begin(), Values.end(),
                        [fact](const auto& value) { return value->GetFact() == fact; });
}
