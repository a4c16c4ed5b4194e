#pragma once

#include "platform/values/guid.h"
#include "platform/values/text.h"

namespace orvo {

// A new GUID as 32 characters from 0-9 and A-F. Any thread; never fails.
//
// The zeros that fill a part up follow its digits: a first part of 00ABCDEF reads ABCDEF00, a byte
// 0A reads A0. That loses the exact value and keeps the length; identifiers already in directories
// are written so.
Text NewGUIDText();

// The generator behind it; withDashes puts "-" behind each of the eleven parts, the last included.
Text FormatGUID(bool& withDashes);

// The text of a given identifier, in the same format.
Text FormatGUIDValue(const abi::GUID& id, bool withDashes);

}  // namespace orvo
