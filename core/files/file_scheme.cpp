// SPDX-License-Identifier: Apache-2.0
#include "core/files/schemes.h"

#include <core/files/file_io.h>
#include <core/files/file_system.h>
#include <core/runtime/random.h>
#include <core/runtime/utf8.h>

#include <exception>

namespace core {

std::string name_beside() {
    return ".core-" + to_utf8(to_string(new_guid()));
}

void IFileScheme::writeFile(const wstring& to, const FileWriter& write) {
    const wstring beside = to.substr(0, to.rfind(u'/') + 1) + from_utf8(name_beside());
    const InterfacePtr<IFile> file = openURL(beside, OpenMode::createNew);
    try {
        write(*file);
        file->flush();
        file->close();
        moveFile(beside, to);
    } catch (...) {
        const std::exception_ptr error = std::current_exception();
        try {
            file->close();
            remove(beside);
        } catch (const std::exception&) {
            // What is reported is why the file was not written.
        }
        std::rethrow_exception(error);
    }
}

void IFileScheme::saveFile(IFile& content, const wstring& to) {
    writeFile(to, [&content](IFile& file) { copy_bytes(content, file); });
}

} // namespace core
