// zuManipTokens.h - element names of the manipulation domain that geometry shares. Group: tokens.
#pragma once

#include "foundation/zuToken.h"

/// Element names, built once at load time.
namespace ZuManip {

extern ZU_API ZuToken const ZuLinearToken;
extern ZU_API ZuToken const ZuAngularToken;

}  // namespace ZuManip
