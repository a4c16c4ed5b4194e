#pragma once

// What is done with whole files and folders. All of them raise what opened_file.h says.

#include <vector>

#include "platform/objects/files/usable_path.h"

namespace orvo {

enum class EntryKind { file, folder };

// Whether there is an entry of this kind; a link is what it leads to.
bool is_there(const UsablePath& path, EntryKind kind);
// Raises 53 or 76 where there is none.
void require_there(const UsablePath& path, EntryKind kind);

// The entries that a text means, whose last part may be a pattern; at least one.
std::vector<UsablePath> entries_of(const Text& given, EntryKind kind);

// Where a copy of `from` goes that a script sends to `destination`: into that folder, where it ends
// with "/" or where `from` is one of a pattern's; there otherwise. Raises 76 where that folder is
// not there.
UsablePath target_of(const UsablePath& from, const Text& destination, bool is_of_pattern);

// Of a file that nobody may write to.
bool is_read_only(const UsablePath& path);

void make_folder(const UsablePath& path);
// Without `force`, raises 70 where one of them is read-only or, of a folder, holds what is, and
// nothing is deleted; likewise for a folder that holds what the thread's context does not allow.
void delete_entries(const std::vector<UsablePath>& entries, EntryKind kind, bool force);
void delete_entry(const UsablePath& path, EntryKind kind, bool force);
// Without `overwrite`, raises 58 for a file that is there; a folder's files are added to those of a
// folder that is there. Raises 70 for a copy into itself, for a link to a folder, and where what is
// copied, the copy or the folder that is there holds what the thread's context does not allow; then
// nothing is copied.
void copy_entry(const UsablePath& from, const UsablePath& to, EntryKind kind, bool overwrite);
// Raises 58 where there is something, and 70 for a folder as delete_entry and copy_entry do.
void move_entry(const UsablePath& from, const UsablePath& to, EntryKind kind);

}  // namespace orvo
