// zuManipTokens.h - element names of the manipulation domain that geometry shares. Group: tokens.
#pragma once

#include "foundation/zuToken.h"

/// Element names, built once at load time.
namespace ZuManip {

extern ZU_API ZuToken const ZuLinearToken;
extern ZU_API ZuToken const ZuAngularToken;
extern ZU_API ZuToken const ZuRow0Token;
extern ZU_API ZuToken const ZuRow1Token;
extern ZU_API ZuToken const ZuRow2Token;

}  // namespace ZuManip
