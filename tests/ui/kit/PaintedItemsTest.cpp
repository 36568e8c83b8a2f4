#include <QDialog>

#include "ui/WindowTest.h"
#include "ui/kit/PaintedItems.h"

namespace {

/// A list of numbers, each a square of 10 pixels, side by side.
class CNumbers : public QWidget, public CPaintedItems {
 public:
  int CountItems() const override { return static_cast<int>(Numbers.size()); }
  int GetItemKey(int index) const override { return Numbers[static_cast<std::size_t>(index)]; }
  PaintedItem DescribeItem(int index) const override {
    return {QString::number(GetItemKey(index)), "a number"};
  }
  QRect PlaceItem(int index) const override { return {10 * index, 0, 10, 10}; }
  int GetCurrentItem() const override { return Current; }
  void ActivateItem(int index) override { Activated.push_back(GetItemKey(index)); }
  using CPaintedItems::TellItems;

  std::vector<int> Numbers = {7, 8, 9};
  int Current = 1;
  std::vector<int> Activated;
};

class PaintedItems : public testing::Test {
 protected:
  void SetUp() override {
    List = std::make_unique<CNumbers>();
    List->resize(100, 10);
    List->show();
    Face = QAccessible::queryAccessibleInterface(List.get());
  }
  static void Activate(QAccessibleInterface& item) {
    item.actionInterface()->doAction(QAccessibleActionInterface::pressAction());
  }

  std::unique_ptr<CNumbers> List;
  QAccessibleInterface* Face = nullptr;
};

}  // namespace

TEST_F(PaintedItems, AreChildrenWithNameStateAndPlace) {
  ASSERT_EQ(Face->childCount(), 3);
  EXPECT_EQ(Face->child(3), nullptr);
  QAccessibleInterface* item = Face->child(1);
  EXPECT_EQ(item, Face->child(1)) << "one interface for each";
  EXPECT_EQ(item->parent(), Face);
  EXPECT_EQ(Face->indexOfChild(item), 1);
  EXPECT_TRUE(item->state().selected);
  EXPECT_FALSE(Face->child(0)->state().selected);
  EXPECT_EQ(item->rect(), QRect(List->mapToGlobal(QPoint(10, 0)), QSize(10, 10)));
  EXPECT_EQ(Face->childAt(item->rect().x(), item->rect().y()), item);
  EXPECT_EQ(Face->childAt(List->mapToGlobal(QPoint(50, 5)).x(), 0), nullptr);
}

TEST_F(PaintedItems, AnItemThatIsGoneIsInvalidAndTheOthersKeepTheirFaces) {
  QAccessibleInterface* gone = Face->child(1);
  QAccessibleInterface* last = Face->child(2);
  List->Numbers = {7, 9, 10};
  EXPECT_FALSE(gone->isValid());
  EXPECT_TRUE(gone->state().invalid);
  EXPECT_EQ(gone->text(QAccessible::Name), "");
  EXPECT_EQ(gone->rect(), QRect());
  EXPECT_EQ(Face->indexOfChild(gone), -1);
  Activate(*gone);
  EXPECT_EQ(Face->child(1), last);
  const QAccessible::Id id = QAccessible::uniqueId(last);
  List.reset();
  EXPECT_EQ(QAccessible::accessibleInterface(id), nullptr);
}

TEST_F(PaintedItems, ActivateTheOneThatWasMeantIfItCouldBeClicked) {
  QAccessibleInterface* nine = Face->child(2);
  QAccessibleInterface* eight = Face->child(1);
  Activate(*nine);
  Activate(*eight);
  List->Numbers = {9, 7};  // before they are activated
  EXPECT_TRUE(QTest::qWaitFor([&] { return !List->Activated.empty(); }));
  QDialog dialog;
  dialog.setModal(true);
  dialog.show();
  Activate(*nine);
  QCoreApplication::processEvents();
  dialog.hide();
  List->setEnabled(false);
  Activate(*nine);
  QCoreApplication::processEvents();
  EXPECT_EQ(List->Activated, std::vector{9});
}
