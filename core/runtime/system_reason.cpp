// SPDX-License-Identifier: Apache-2.0
#include "core/runtime/system_reason.h"

#include <core/runtime/exception.h>
#include <core/runtime/utf8.h>

#include <algorithm>
#include <cerrno>
#include <iterator>

namespace core {
namespace {

struct Known {
    int error;
    const char* id;
};

/// What goes wrong with files and folders, as a rule.
constexpr Known kKnown[] = {
    {EACCES, "IDS_SYSTEM_EACCES"},   {EBUSY, "IDS_SYSTEM_EBUSY"},
    {EEXIST, "IDS_SYSTEM_EEXIST"},   {EFBIG, "IDS_SYSTEM_EFBIG"},
    {EIO, "IDS_SYSTEM_EIO"},         {EISDIR, "IDS_SYSTEM_EISDIR"},
    {EMFILE, "IDS_SYSTEM_EMFILE"},   {ENAMETOOLONG, "IDS_SYSTEM_ENAMETOOLONG"},
    {ENOENT, "IDS_SYSTEM_ENOENT"},   {ENOSPC, "IDS_SYSTEM_ENOSPC"},
    {ENOTDIR, "IDS_SYSTEM_ENOTDIR"}, {ENOTEMPTY, "IDS_SYSTEM_ENOTEMPTY"},
    {EPERM, "IDS_SYSTEM_EPERM"},     {EPIPE, "IDS_SYSTEM_EPIPE"},
    {EROFS, "IDS_SYSTEM_EROFS"},     {EXDEV, "IDS_SYSTEM_EXDEV"},
};

} // namespace

wstring system_reason(int error) {
    const auto* const known = std::ranges::find(kKnown, error, &Known::error);
    if (known != std::end(kKnown)) {
        if (wstring text = message_text(known->id); text != from_utf8(known->id)) // which it is without texts
            return text;
    }
    return text_of_system(error);
}

} // namespace core
