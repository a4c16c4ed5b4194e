#include "suite/directory/embedded/provider/EmbeddedDirectory.h"

#include "suite/directory/embedded/provider/EmbeddedEntry.h"
#include "suite/directory/embedded/provider/EmbeddedSearch.h"
#include "suite/directory/embedded/provider/EmbeddedValidator.h"

namespace orvo {

template <>
inline constexpr auto class_of<directory::embedded::EmbeddedSchema> =
    describe_class<DirectorySchema>("OrvoDirectory.Embedded");

namespace directory::embedded {

Ref<DirectorySchema> EmbeddedDirectory::CreateSchema() { return make<EmbeddedSchema>(); }
Ref<DirectoryEntry> EmbeddedDirectory::CreateEntry() { return make<EmbeddedEntry>(); }
Ref<DirectoryValidator> EmbeddedDirectory::CreateValidator() { return make<EmbeddedValidator>(); }
Ref<DirectorySearch> EmbeddedDirectory::CreateSearch() { return make<EmbeddedSearch>(); }

}  // namespace directory::embedded
}  // namespace orvo
