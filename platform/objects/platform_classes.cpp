// The platform's own classes, as a module of their own.

#include "platform/module/module.h"
#include "platform/objects/context/app_server.h"
#include "platform/objects/dictionary/dictionary.h"
#include "platform/objects/recordset/record_set.h"
#ifndef _WIN32
#include "platform/objects/files/file_system.h"
#include "platform/objects/stream/stream.h"
#endif

namespace orvo {

const ModuleDescription& this_module() {
    // Windows has record sets, dictionaries, files and streams of its own and keeps them; the
    // record set is there under a name that no system has another class for, too.
    static constexpr ModuleClass classes[] = {
        module_class<AppServerObject>(),
        {"OrvoPlatform.Recordset", guid("fbca2f69-2f32-4086-b3f8-77ba25367bc1"),
         [] { return make<RecordSetObject>().object(); }},
#ifndef _WIN32
        module_class<RecordSetObject>(),
        module_class<DictionaryObject>(),
        module_class<FileSystem>(),
        module_class<Stream>(),
#endif
    };
    static constexpr ModuleDescription description{"OrvoPlatform", classes};
    return description;
}

}  // namespace orvo
