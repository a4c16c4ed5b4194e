#include "component/common/GUIDGenerator.h"

#include "component/common/Lib_Win32.h"

namespace orvo {
namespace {

Text AppendGUIDPart(const Text& text, const Text& part, std::int16_t width, bool withDashes) {
    const auto missing = width - static_cast<int>(part.size());
    const auto zeros = static_cast<std::size_t>(missing < 0 ? -missing : missing);
    return text + part + Text(zeros, u'0') + (withDashes ? u"-" : u"");
}

}  // namespace

Text FormatGUIDValue(const abi::GUID& id, bool withDashes) {
    Text text;
    auto append = [&](std::uint32_t field, std::int16_t width) {
        text = AppendGUIDPart(text, hexadecimal(static_cast<int>(field)), width, withDashes);
    };
    append(id.Data1, 8);
    append(id.Data2, 4);
    append(id.Data3, 4);
    for (const std::uint8_t byte : id.Data4) append(byte, 2);
    return text;
}

Text FormatGUID(bool& withDashes) { return FormatGUIDValue(Win32_CreateGuid(), withDashes); }

Text NewGUIDText() {
    bool withDashes = false;
    return FormatGUID(withDashes);
}

}  // namespace orvo
