#include "component/common/web_page.h"

#include "component/common/Lib_ErrorHandling.h"
#include "component/common/Lib_General.h"
#include "platform/interfaces/late_call.h"
#include "platform/values/wiped.h"

namespace orvo {

bool runs_in_page(const Text& item, const ActivationNotes& notes) {
    const std::int16_t state = Gen_GetIntrinsicState(item);
    if (state == 0) return true;
    const char16_t* note = state == -1 ? notes.no_context : notes.no_item;
    if (note) LogError(notes.method, note);
    return false;
}

Text session_text(const Object& session, const char16_t* name) {
    return late::value_of(session, {name}).to<Text>();
}

Secret session_secret(const Object& session) {
    return Wiped(late::value_of(session, {session_password})).value.to<Secret>();
}

}  // namespace orvo
