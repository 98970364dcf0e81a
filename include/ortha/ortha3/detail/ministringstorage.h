// MiniStringStorage: string storage one pointer wide, for records that hold several mostly empty strings.
//
// Invariants:
// - `pData_` is null without a block, and then begin, end, size and capacity all read as 0.
// - A block comes from malloc and belongs to this object alone. An empty text may keep one.
// - The text is terminated by c_str only. There is always room for the terminator.
//
// Memory that runs out ends the process: there is no allocator to throw.
#pragma once

#include <cstdlib>
#include <limits>
#include <memory>
#include <utility>

#include "ortha/ortha3/detail/flex_string_block.h"

namespace General::Ortha {

template <typename E, typename A = std::allocator<E>>
class MiniStringStorage : public Detail::ExactGrowth<MiniStringStorage<E, A>, E>
{
    using Growth = Detail::ExactGrowth<MiniStringStorage, E>;

public:
    using value_type = E;
    using iterator = E*;
    using const_iterator = const E*;
    using allocator_type = A;
    using size_type = std::size_t;

    explicit MiniStringStorage(const A& = A()) noexcept : pData_(nullptr) {}

    MiniStringStorage(const MiniStringStorage& rhs) : MiniStringStorage(rhs.begin(), rhs.size()) {}

    /// Takes the block; `rhs` is left empty.
    MiniStringStorage(MiniStringStorage&& rhs) noexcept : pData_(std::exchange(rhs.pData_, nullptr)) {}

    MiniStringStorage(const E* s, size_type n, const A& = A())
    {
        Init(n, n);
        Detail::copyChars(begin(), s, n);
    }

    MiniStringStorage(size_type n, E c, const A& = A())
    {
        Init(n, n);
        std::fill_n(begin(), n, c);
    }

    ~MiniStringStorage()
    {
        assert(begin() <= end());
        std::free(pData_);
    }

    MiniStringStorage& operator=(const MiniStringStorage& rhs)
    {
        if (this != &rhs)
        {
            Growth::assignText(rhs);
        }
        return *this;
    }

    MiniStringStorage& operator=(MiniStringStorage&& rhs) noexcept
    {
        MiniStringStorage(std::move(rhs)).swap(*this);
        return *this;
    }

    iterator begin() noexcept { return pData_ ? pData_->buffer_ : nullptr; }
    const_iterator begin() const noexcept { return pData_ ? pData_->buffer_ : nullptr; }
    iterator end() noexcept { return pData_ ? pData_->pEnd_ : nullptr; }
    const_iterator end() const noexcept { return pData_ ? pData_->pEnd_ : nullptr; }

    size_type size() const noexcept { return pData_ ? static_cast<size_type>(pData_->pEnd_ - pData_->buffer_) : 0; }
    size_type capacity() const noexcept { return pData_ ? static_cast<size_type>(pData_->pEndOfMem_ - pData_->buffer_) : 0; }

    size_type max_size() const noexcept { return Data::capacityWithin(static_cast<size_type>(std::numeric_limits<std::ptrdiff_t>::max())); }

    /// Makes room for exactly `n` characters if there is less; never shrinks.
    void reserve(size_type n)
    {
        if (!pData_)
        {
            Init(0, n);
            return;
        }
        if (n <= capacity())
        {
            return;
        }
        const size_type oldSize = size();
        pData_ = obtainBlock(pData_, n);
        pData_->setExtent(oldSize, n);
    }

    void swap(MiniStringStorage& rhs) noexcept { std::swap(pData_, rhs.pData_); }

    const E* c_str() const noexcept
    {
        static constexpr E nothing{};
        if (!pData_)
        {
            return &nothing;
        }
        *pData_->pEnd_ = E();
        return pData_->buffer_;
    }

    const E* data() const noexcept { return begin(); }
    A get_allocator() const noexcept { return A(); }

private:
    friend Growth;

    using Data = Detail::StringBlock<E>;

    // malloc or realloc, as `old` is null or not. Kept out of line: compilers that see through malloc take the place of a terminator that
    // nobody has asked for yet for a read of uninitialised memory.
    [[gnu::noinline]] static Data* obtainBlock(Data* old, size_type capacity)
    {
        const size_type bytes = Data::bytesFor(capacity);
        void* const block = old ? std::realloc(old, bytes) : std::malloc(bytes);
        if (!block)
        {
            assert(0);
            std::abort();  // where the assertion is compiled out, this must not end in a write through null either
        }
        return static_cast<Data*>(block);
    }

    void Init(size_type size, size_type capacity)
    {
        assert(size <= capacity);
        if (capacity == 0)
        {
            pData_ = nullptr;
            return;
        }
        pData_ = obtainBlock(nullptr, capacity);
        pData_->setExtent(size, capacity);
    }

    void setSize(size_type n) noexcept { pData_->pEnd_ = pData_->buffer_ + n; }

    Data* pData_;
};

}  // namespace General::Ortha
