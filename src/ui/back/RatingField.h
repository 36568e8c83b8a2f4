#pragma once

#include "ui/back/FieldValue.h"
#include "ui/kit/RatingControl.h"

/// The stars of the photo back, over the value that keeps the rating.
class CRatingField : public CRatingOwner, private CFieldListener {
 public:
  explicit CRatingField(QWidget* parent) : Control(*this, parent) {}
  ~CRatingField() override;

  /// Not owned; null for none.
  void SetValue(CFieldValue* value);

  int GetRating() const override { return Value != nullptr ? Value->GetNumber() : 0; }
  void SetRating(int rating) override;
  void Commit() override;

  CRatingControl& GetControl() { return Control; }

 private:
  void OnValueChanged() override { Control.Refresh(); }

  CRatingControl Control;
  CFieldValue* Value = nullptr;
};
