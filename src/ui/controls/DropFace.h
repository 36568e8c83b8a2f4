#pragma once

class CDropControl;
class QAccessibleInterface;

/// What assistive tools see of a drop control: a combo box of which the text is the choice. While its list is
/// open it holds that, and while its text is edited the edit box.
QAccessibleInterface* MakeDropFace(CDropControl& control);
