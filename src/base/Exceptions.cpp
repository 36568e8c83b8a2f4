#include "base/Exceptions.h"

#include "base/Texts.h"

CException::CException(StringId message) : CThrowable(LoadExpandedString(message)) {}
