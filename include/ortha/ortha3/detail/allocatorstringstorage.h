// AllocatorStringStorage: string storage in one block from an allocator.
//
// Invariants:
// - `pData_` is never null. Without a block it points to `emptyString_`, which all strings share, in its own module or in another
//   one: "no block" is therefore recognised by a capacity of 0 and not by the address.
// - A block of its own has a capacity above 0 and belongs to this object alone.
// - The text is terminated by c_str only. There is always room for the terminator.
// - The allocator gives memory that is aligned for a pointer, whatever its value type, as `operator new` does.
#pragma once

#include <limits>
#include <memory>
#include <new>
#include <utility>

#include "ortha/ortha3/detail/flex_string_block.h"

namespace General::Ortha {

template <typename E, typename A = std::allocator<E>>
class AllocatorStringStorage : private A, public Detail::ExactGrowth<AllocatorStringStorage<E, A>, E>
{
    using Growth = Detail::ExactGrowth<AllocatorStringStorage, E>;

public:
    using value_type = E;
    using iterator = E*;
    using const_iterator = const E*;
    using allocator_type = A;
    using size_type = std::size_t;

    explicit AllocatorStringStorage(const A& a = A()) noexcept : A(a), pData_(emptyData()) {}

    AllocatorStringStorage(const AllocatorStringStorage& rhs) : AllocatorStringStorage(rhs.begin(), rhs.size(), rhs.get_allocator()) {}

    /// Takes the block; `rhs` is left empty.
    AllocatorStringStorage(AllocatorStringStorage&& rhs) noexcept : A(rhs.get_allocator()), pData_(std::exchange(rhs.pData_, emptyData()))
    {
    }

    AllocatorStringStorage(const E* s, size_type n, const A& a = A()) : A(a)
    {
        Init(n, n);
        Detail::copyChars(begin(), s, n);
    }

    AllocatorStringStorage(size_type n, E c, const A& a = A()) : A(a)
    {
        Init(n, n);
        std::fill_n(begin(), n, c);
    }

    ~AllocatorStringStorage()
    {
        const size_type cap = capacity();
        if (cap != 0)
        {
            ByteAllocator bytes(get_allocator());
            ByteTraits::deallocate(bytes, reinterpret_cast<char*>(pData_), Data::bytesFor(cap));
        }
    }

    AllocatorStringStorage& operator=(const AllocatorStringStorage& rhs)
    {
        if (this != &rhs)
        {
            Growth::assignText(rhs);
        }
        return *this;
    }

    AllocatorStringStorage& operator=(AllocatorStringStorage&& rhs) noexcept
    {
        AllocatorStringStorage(std::move(rhs)).swap(*this);
        return *this;
    }

    iterator begin() noexcept { return pData_->buffer_; }
    const_iterator begin() const noexcept { return pData_->buffer_; }
    iterator end() noexcept { return pData_->pEnd_; }
    const_iterator end() const noexcept { return pData_->pEnd_; }

    size_type size() const noexcept { return static_cast<size_type>(end() - begin()); }
    size_type capacity() const noexcept { return static_cast<size_type>(pData_->pEndOfMem_ - begin()); }

    size_type max_size() const noexcept
    {
        const auto largestObject = static_cast<size_type>(std::numeric_limits<std::ptrdiff_t>::max());
        return Data::capacityWithin(std::min<size_type>(ByteTraits::max_size(ByteAllocator(get_allocator())), largestObject));
    }

    /// Makes room for exactly `n` characters if there is less; never shrinks. Unchanged when the allocator throws.
    void reserve(size_type n)
    {
        if (n <= capacity())
        {
            return;
        }
        AllocatorStringStorage longer(get_allocator());
        longer.Init(size(), n);
        Detail::copyChars(longer.begin(), std::as_const(*this).begin(), size());
        swap(longer);
    }

    void swap(AllocatorStringStorage& rhs) noexcept
    {
        std::swap(static_cast<A&>(*this), static_cast<A&>(rhs));
        std::swap(pData_, rhs.pData_);
    }

    const E* c_str() const noexcept
    {
        if (capacity() != 0)
        {
            *pData_->pEnd_ = E();
        }
        return begin();
    }

    const E* data() const noexcept { return begin(); }
    A get_allocator() const noexcept { return *this; }

private:
    friend Growth;

    using Data = Detail::StringBlock<E>;
    using ByteAllocator = typename std::allocator_traits<A>::template rebind_alloc<char>;
    using ByteTraits = std::allocator_traits<ByteAllocator>;

    static const Data emptyString_;

    // Constant storage behind a plain pointer: nothing writes to a block without having asked for a capacity above 0.
    static Data* emptyData() noexcept { return const_cast<Data*>(&emptyString_); }

    // Leaves `pData_` alone when the allocator throws.
    void Init(size_type size, size_type cap)
    {
        assert(size <= cap);
        if (cap == 0)
        {
            pData_ = emptyData();
            return;
        }
        ByteAllocator bytes(get_allocator());
        pData_ = ::new (static_cast<void*>(ByteTraits::allocate(bytes, Data::bytesFor(cap)))) Data;
        pData_->setExtent(size, cap);
    }

    void setSize(size_type n) noexcept { pData_->pEnd_ = pData_->buffer_ + n; }

    Data* pData_;
};

// A constant expression, so that it is in place before any code runs.
template <typename E, typename A>
const Detail::StringBlock<E> AllocatorStringStorage<E, A>::emptyString_ = {
    const_cast<E*>(AllocatorStringStorage<E, A>::emptyString_.buffer_),
    const_cast<E*>(AllocatorStringStorage<E, A>::emptyString_.buffer_),
    {E()}};

}  // namespace General::Ortha
