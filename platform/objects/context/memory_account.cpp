#include "platform/objects/context/memory_account.h"

#include "platform/interfaces/hosted.h"

namespace orvo {
namespace {

class BudgetAccount : public MemoryAccount {
public:
    explicit BudgetAccount(std::shared_ptr<MemoryBudget> budget) : budget_(std::move(budget)) {}

    void Hold(LongPtr bytes) override {
        if (bytes.value < 0)
            budget_->give_back(static_cast<std::size_t>(-bytes.value));
        else if (!budget_->take(static_cast<std::size_t>(bytes.value)))
            throw Failure(runtime_error::out_of_memory, {},
                          u"Out of memory: the script and its objects need more than they may (" +
                              decimal(static_cast<long long>(budget_->limit() >> 20)) + u" MiB)");
    }

private:
    const std::shared_ptr<MemoryBudget> budget_;
};

}  // namespace

template <>
inline constexpr auto class_of<BudgetAccount> =
    describe_class<MemoryAccount>("OrvoPlatform.MemoryAccount");

Object make_memory_account(std::shared_ptr<MemoryBudget> budget) {
    return make<BudgetAccount>(std::move(budget)).object();
}

}  // namespace orvo
