#include "platform/module/classes.h"

#include "platform/context/app_server.h"
#include "platform/dictionary/dictionary.h"
#include "platform/recordset/record_set.h"

namespace orvo {

std::span<const ModuleClass> platform_classes() {
    static constexpr ModuleClass classes[] = {
        module_class<AppServerObject>(),
        {own_record_set_progid, own_record_set_clsid,
         [] { return make<RecordSetObject>().object(); }},
#ifndef _WIN32
        module_class<RecordSetObject>(),
        module_class<DictionaryObject>(),
#endif
    };
    return classes;
}

}  // namespace orvo
