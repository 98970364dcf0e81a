// TFunction0 to TFunction5: a callback that holds a free function, or a member function with its object.
//
//     struct Door { void onKnock(int times); };
//     Door door;
//     TFunction1<void, int> knock(&Door::onKnock, &door);
//     if (!knock.empty()) { knock(3); }       // door.onKnock(3)
//
// A function object is a plain value: copied as it is, never allocates, compares equal to another one of the same function
// and the same object. It does not own the object, which must outlive every call.
//
// One member function can be bound several times to one object, with a reuse tag that tells the bindings apart: the callee
// reads it with getCurrentFunctionReuse(). Binding with the tag `typeAny` gives a key that equals every tagged binding of that
// function and object; it serves to search with, not to be called.
//
// Threads: one thread at a time while an object is being assigned; calls and copies of one object from any thread.
#pragma once

#include <type_traits>
#include <typeinfo>

#include "ortha/ortha3/Export.h"

namespace General::Ortha {

namespace Detail {

/// Sets the calling thread's reuse tag, which getCurrentFunctionReuse() reads.
ORTHA_API void setCurrentFunctionReuse(unsigned int tag);

}  // namespace Detail

/// The tag of the last tagged function object that the calling thread called; 0 if there was none. It means something only
/// inside such a call: nothing resets it afterwards, and a call without a tag leaves it as it is.
ORTHA_API unsigned int getCurrentFunctionReuse();

/// What a function object holds. The values from `typeReuse` to 0xFFFFFFFE are reuse tags; 3 to 15 are not used.
enum FunctionType : unsigned int
{
    typeEmpty = 0,         ///< nothing
    typeMember = 1,        ///< a member function with its object
    typePointer = 2,       ///< a free function
    typeReuse = 16,        ///< the first reuse tag
    typeAny = 0xFFFFFFFFu  ///< a search key: equals every tag
};

template <class R, class... Args>
class TFunctionN
{
    // Every class's member functions and objects are kept as those of this one.
    class X
    {
    };
    using FreeFunction = R (*)(Args...);
    using MemberFunction = R (X::*)(Args...);

public:
    using result_type = R;

    /// Holds nothing.
    TFunctionN() noexcept : m_function{}, m_type(typeEmpty), m_objectType(nullptr) {}

    /// Holds a free function; a null pointer makes an empty object.
    TFunctionN(R (*function)(Args...)) noexcept : TFunctionN()
    {
        if (function)
        {
            m_function.free = function;
            m_type = typePointer;
        }
    }

    /// Holds a member function of `object`, or of a base of it, optionally with a reuse tag: `typeReuse` to 0xFFFFFFFE, or `typeAny`.
    /// A tag below `typeReuse` counts as none.
    template <class O, class T>
    TFunctionN(R (O::*function)(Args...), T* object, unsigned int tag = typeMember) noexcept
        : TFunctionN(reinterpret_cast<MemberFunction>(function), static_cast<O*>(object), typeid(T*).name(), tag)
    {
    }

    template <class O, class T>
    TFunctionN(R (O::*function)(Args...) const, T* object, unsigned int tag = typeMember) noexcept
        : TFunctionN(reinterpret_cast<MemberFunction>(function), static_cast<const O*>(object), typeid(T*).name(), tag)
    {
    }

    /// True if there is nothing to call.
    [[nodiscard]] bool empty() const noexcept { return m_type == typeEmpty; }

    /// Calls the function. A tagged object first sets the thread's reuse tag. Precondition: not empty.
    R operator()(Args... args) const
    {
        if (m_type == typePointer)
        {
            return m_function.free(static_cast<Args&&>(args)...);
        }
        if (isTag(m_type) && m_type != typeAny)
        {
            Detail::setCurrentFunctionReuse(m_type);
        }
        return (m_function.member.object->*m_function.member.function)(static_cast<Args&&>(args)...);
    }

    /// Same kind, same function, same object. Two different tags differ; `typeAny` equals every tag.
    friend bool operator==(const TFunctionN& a, const TFunctionN& b) noexcept
    {
        if (isTag(a.m_type) && isTag(b.m_type))
        {
            return (a.m_type == b.m_type || a.m_type == typeAny || b.m_type == typeAny) && sameMember(a, b);
        }
        if (a.m_type != b.m_type)
        {
            return false;
        }
        switch (a.m_type)
        {
        case typeMember:
            return sameMember(a, b);
        case typePointer:
            return a.m_function.free == b.m_function.free;
        default:
            return true;
        }
    }

    friend bool operator!=(const TFunctionN& a, const TFunctionN& b) noexcept { return !(a == b); }

    /// The kind of target: a FunctionType, or the reuse tag.
    [[nodiscard]] unsigned int type() const noexcept { return m_type; }

private:
    template <class O>
    TFunctionN(MemberFunction function, O* object, const char* objectType, unsigned int tag) noexcept
        : m_type(isTag(tag) ? tag : typeMember), m_objectType(objectType)
    {
        m_function.member.function = function;
        m_function.member.object = reinterpret_cast<X*>(const_cast<std::remove_const_t<O>*>(object));
    }

    static bool isTag(unsigned int type) noexcept { return type >= typeReuse; }

    static bool sameMember(const TFunctionN& a, const TFunctionN& b) noexcept
    {
        return a.m_function.member.object == b.m_function.member.object && a.m_function.member.function == b.m_function.member.function;
    }

    union Target
    {
        struct
        {
            MemberFunction function;
            X* object;
        } member;
        FreeFunction free;
    } m_function;
    unsigned int m_type;
    const char* m_objectType;  // typeid text of the bound pointer, for a debugger
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

}  // namespace General::Ortha
