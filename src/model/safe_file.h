// Replacing a file without ever leaving a half-written one in its place.
#pragma once

#include <string>
#include <string_view>

namespace ovaro {

// Writes `content` to a temporary file beside `path` and renames it over `path` once every write
// (each one compared with the count asked) and the flush to disk have succeeded. When
// `keepOldTail` is set and the existing file is longer than `content`, the old bytes from that
// length on follow the new ones, as if the old file had been overwritten in place without being
// truncated. A symbolic link is followed: the file it names is replaced and the link kept. The
// new file takes the old file's permissions. On any failure the temporary file is removed, the
// old file is untouched, `error` (when given) says what failed, and false is returned.
bool replaceFileContents(const std::string& path, std::string_view content, bool keepOldTail,
                         std::string* error = nullptr);

// The whole content of a file, or false when it cannot be read.
bool readWholeFile(const std::string& path, std::string& out);

}  // namespace ovaro
