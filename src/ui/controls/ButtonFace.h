#pragma once

class CPaintedButton;
class QAccessibleInterface;

/// What assistive tools are told of a button: its caption, its tip, the key of its command, and that it can
/// be pressed. Qt takes the result over.
QAccessibleInterface* MakeButtonFace(CPaintedButton& button);
