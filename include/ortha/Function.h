// TFunction0 to TFunction5 of the older interface: those of ortha3/Function.h under their older names.
//
//     TFunction1<void, unsigned long> onTimer(&Poller::onTimer, &poller);
//
// Each converts to the newer one, which holds the same function and object, and can be made from it.
#pragma once

#include "ortha/ortha3/Function.h"

template <class R, class... Args>
class TFunctionN : public General::Ortha::TFunctionN<R, Args...>
{
    using Newer = General::Ortha::TFunctionN<R, Args...>;

public:
    using Newer::Newer;
    TFunctionN() noexcept = default;
    TFunctionN(const Newer& function) noexcept : Newer(function) {}
};

template <class R>
using TFunction0 = TFunctionN<R>;
template <class R, class A1>
using TFunction1 = TFunctionN<R, A1>;
template <class R, class A1, class A2>
using TFunction2 = TFunctionN<R, A1, A2>;
template <class R, class A1, class A2, class A3>
using TFunction3 = TFunctionN<R, A1, A2, A3>;
template <class R, class A1, class A2, class A3, class A4>
using TFunction4 = TFunctionN<R, A1, A2, A3, A4>;
template <class R, class A1, class A2, class A3, class A4, class A5>
using TFunction5 = TFunctionN<R, A1, A2, A3, A4, A5>;
