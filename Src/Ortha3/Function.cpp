#include "ortha/ortha3/Function.h"

#include "Src/Ortha3/ThreadNumber.h"

namespace General::Ortha {

namespace {

ThreadNumber& reuseTag()
{
    static ThreadNumber& tag = *new ThreadNumber;
    return tag;
}

[[maybe_unused]] const ThreadNumber& s_madeEarly = reuseTag();

}  // namespace

void Detail::setCurrentFunctionReuse(unsigned int tag)
{
    reuseTag().set(tag);
}

unsigned int getCurrentFunctionReuse()
{
    return static_cast<unsigned int>(reuseTag().get());
}

}  // namespace General::Ortha
