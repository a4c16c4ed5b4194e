#pragma once

// How a host limits what objects hold in memory for the scripts that made them: an item of the
// object context counts it.

#include <memory>
#include <utility>

#include "platform/interfaces/call.h"
#include "platform/interfaces/interface.h"
#include "platform/objects/context/memory_budget.h"
#include "platform/objects/recordset/long_ptr.h"

namespace orvo {

// The item's name. Where a context has no such item, or a thread no context, nothing is counted.
inline constexpr const char16_t* memory_account_item = u"OrvoPlatform.MemoryAccount";

class MemoryAccount {
public:
    // So many bytes more than before; fewer where it is less than 0. Raises 7, and counts nothing,
    // where that is more than may be held.
    virtual void Hold(LongPtr bytes) = 0;

protected:
    ~MemoryAccount() = default;
};

template <>
inline constexpr auto table_of<MemoryAccount> =
    describe<MemoryAccount>("IMemoryAccount", "5d4b3c53-6f0e-4a61-9d0c-1f6f4f6a2c13",
                            method<&MemoryAccount::Hold>("Hold", "bytes"));

// How an object finds the item, beside ObjectContext on the context of a host that counts: no other
// context is asked for a name that it has not heard of.
class MemoryHost {
public:
    // Nothing where it has no such item.
    virtual Variant Account() = 0;

protected:
    ~MemoryHost() = default;
};

template <>
inline constexpr auto table_of<MemoryHost> = describe<MemoryHost>(
    "IMemoryHost", "5d4b3c53-6f0e-4a61-9d0c-1f6f4f6a2c14", method<&MemoryHost::Account>("Account"));

// That item, which takes what it counts from the budget. It belongs to the calling thread, as the
// context does.
Object make_memory_account(std::shared_ptr<MemoryBudget> budget);

// What one object holds. Every object that keeps what scripts give it has one, and tells it.
class HeldMemory {
public:
    // Counted by nobody.
    HeldMemory() = default;
    explicit HeldMemory(Ref<MemoryAccount> account) : account_(std::move(account)) {}
    ~HeldMemory() { set(0); }
    HeldMemory(HeldMemory&& other) noexcept
        : account_(std::move(other.account_)), bytes_(std::exchange(other.bytes_, 0)) {}
    HeldMemory& operator=(HeldMemory&&) = delete;

    // All that is held from now on; called before it becomes more. Raises what the account raises,
    // and then it is what it was.
    void set(std::size_t bytes) {
        if (bytes == bytes_) return;
        if (account_)
            call<&MemoryAccount::Hold>(account_, LongPtr(static_cast<std::int64_t>(bytes) -
                                                         static_cast<std::int64_t>(bytes_)));
        bytes_ = bytes;
    }
    void add(std::size_t bytes) { set(bytes_ + bytes); }
    void subtract(std::size_t bytes) { set(bytes_ - bytes); }

private:
    Ref<MemoryAccount> account_;
    std::size_t bytes_ = 0;
};

}  // namespace orvo
