#include "ui/back/RatingField.h"

#include "ui/back/StoreValue.h"

CRatingField::~CRatingField() { SetValue(nullptr); }

void CRatingField::SetValue(CFieldValue* value) {
  if (Value != nullptr) Value->SetListener(nullptr);
  Value = value;
  if (Value != nullptr) Value->SetListener(this);
  Control.Refresh();
}

void CRatingField::SetRating(int rating) {
  if (Value != nullptr) Value->SetNumber(rating);
}

void CRatingField::Commit() {
  if (Value != nullptr) StoreValue(*Value);
  Control.Refresh();
}
