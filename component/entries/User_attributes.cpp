#include "component/common/Index16.h"
#include "component/common/Lib_ErrorHandling.h"
#include "component/entries/User.h"
#include "component/entries/UserPrivileges.h"
#include "platform/interfaces/create.h"
#include "platform/values/values.h"

namespace orvo {
namespace {

Ref<Dictionary> dictionary_of(const Values& names) {
    auto dictionary = Ref<Dictionary>::from(create_object(u"Scripting.Dictionary"));
    any_index16(names.lower_bound(), names.upper_bound(), [&](std::int32_t i) {
        Variant name = names[i];
        Variant unread = u"";
        call<&Dictionary::Add>(dictionary, name, unread);
        return false;
    });
    return dictionary;
}

bool restricts(const Ref<Dictionary>& list) { return list && call<&Dictionary::Count>(list) != 0; }

bool is_unread(const Variant& item) { return item.is_text() && item.text_view().empty(); }

}  // namespace

void User::CheckPrivs() {
    trapped(u"OrvoMembership.User.CheckPrivs", [&] {
        const UserPrivileges lists = user_privileges(cn_);
        readable_attributes_ = dictionary_of(lists.readable);
        writable_attributes_ = dictionary_of(lists.writable);
    });
}

Variant User::GetAttribValue(Text& iAttribName) {
    constexpr const char16_t* source = u"OrvoMembership.User.GetAttribValue";
    return trapped_with_info(
        source, [&] { return u"Attribute is: " + iAttribName; },
        [&]() -> Variant {
            if (!restricts(readable_attributes_))
                return call<&DirectoryEntry::GetValues>(directory_object_, iAttribName);
            Variant key = lower(iAttribName);
            if (call<&Dictionary::Exists>(readable_attributes_, key)) {
                if (is_unread(call<&Dictionary::Item>(readable_attributes_, key))) {
                    Variant value =
                        call<&DirectoryEntry::GetValues>(directory_object_, iAttribName);
                    call<&Dictionary::SetItem>(readable_attributes_, key, value);
                }
                return call<&Dictionary::Item>(readable_attributes_, key);
            }
            // Without a pending error nothing is raised: a page shows what its user may not read
            // as empty.
            HandleError(source,
                        u"This user is not allowed to retrieve the attribute: " + iAttribName);
            return u"";
        });
}

void User::SetAttribValue(Text& iAttribName, Variant& iAttribValue) {
    constexpr const char16_t* source = u"OrvoMembership.User.SetAttribValue";
    trapped_with_info(
        source, [&] { return u"Attribute is: " + iAttribName; },
        [&] {
            Variant key = lower(iAttribName);
            const bool restricted = restricts(writable_attributes_);
            if (restricted && !call<&Dictionary::Exists>(writable_attributes_, key)) {
                // Quiet as well: a form may send back what its user may not change.
                HandleError(source,
                            u"This user is not allowed to set the attribute: " + iAttribName);
                return;
            }
            call<&DirectoryEntry::SetValues>(directory_object_, iAttribName, iAttribValue);
            if (!restricted) return;
            // Storing the item adds a key that was not there: it can be read from now on.
            Variant copy = iAttribValue;
            call<&Dictionary::SetItem>(readable_attributes_, key, copy);
        });
}

void User::ClearAttribValue(Text& iAttribName) {
    // The lists speak of reading and setting alone. What was read before is the object's until the
    // next bind (User.h).
    trapped(u"OrvoMembership.User.ClearAttribValue",
            [&] { call<&DirectoryEntry::ClearValues>(directory_object_, iAttribName); });
}

}  // namespace orvo
