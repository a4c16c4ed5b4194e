#include "suite/log/tell_log.h"

#include "component/common/log_contract.h"
#include "platform/interfaces/call.h"
#include "platform/interfaces/create.h"

namespace orvo {

void tell_log(const Text& source, const Text& message, std::int32_t level) noexcept {
    try {
        Text written_source = source, written_message = message;
        call<&Log::LogMessage>(Ref<Log>::from(create_object(u"Quendra.Log")), written_source,
                               written_message, level);
    } catch (...) {
    }
}

}  // namespace orvo
