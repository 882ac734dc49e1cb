// SPDX-License-Identifier: Apache-2.0
#include "core/files/descriptor_file.h"
#include "core/files/disk_path.h"

#include <core/files/disk_file.h>
#include <core/files/errors.h>

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>

namespace core {

void flush_folder(const std::string& folder) {
    const Descriptor descriptor(
        ::open(folder.empty() ? "." : folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    if (descriptor.number() < 0 && errno == EACCES)
        return; // a folder that may be written but not read: nothing more can be done
    if (descriptor.number() >= 0 && (::fsync(descriptor.number()) == 0 || errno == EINVAL))
        return; // not every system can
    const int reason = errno;
    throw_file_error(messages::kFileFlush, file_url(folder.empty() ? "." : folder), reason);
}

} // namespace core
