#pragma once

#include "component/provider/directory_contract.h"
#include "platform/interfaces/hosted.h"

namespace orvo {
namespace directory::embedded {

// The schema as an object. Its interface has no operations.
class EmbeddedSchema final : public DirectorySchema {};

// The directory provider over a file, created by its ProgID "OrvoDirectory.Embedded".
class EmbeddedDirectory final : public DirectoryModule {
public:
    Ref<DirectorySchema> CreateSchema() override;
    Ref<DirectoryEntry> CreateEntry() override;
    Ref<DirectoryValidator> CreateValidator() override;
    Ref<DirectorySearch> CreateSearch() override;
};

}  // namespace directory::embedded

template <>
inline constexpr auto class_of<directory::embedded::EmbeddedDirectory> =
    describe_class<DirectoryModule>("OrvoDirectory.Embedded",
                                    "7d5c1a52-8a0e-4b0c-9c53-6f0e2b1d4a37");

}  // namespace orvo
