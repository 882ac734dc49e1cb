// SPDX-License-Identifier: Apache-2.0
#include "host/script/text_files.h"

#include <core/files/disk_file.h>
#include <core/files/file_io.h>
#include <core/files/file_system.h>
#include <core/runtime/error.h>
#include <core/runtime/random.h>
#include <core/runtime/utf8.h>

#include <unicode/ustring.h>

namespace host::script {

using namespace core;

wstring load_text(wstring_view file) {
    const auto source = open_disk_file(to_utf8(file), OpenMode::read);
    const std::vector<std::byte> bytes = read_whole(*source);
    std::string_view text(reinterpret_cast<const char*>(bytes.data()), bytes.size());
    if (text.starts_with("\xEF\xBB\xBF"))
        text.remove_prefix(3);
    wstring units(text.size(), u'\0');
    std::int32_t length = 0;
    UErrorCode status = U_ZERO_ERROR;
    u_strFromUTF8(units.data(), static_cast<std::int32_t>(units.size()), &length, text.data(),
                  static_cast<std::int32_t>(text.size()), &status);
    if (U_FAILURE(status))
        throw_error<ConverterException>("IDS_SCRIPT_NOT_UTF8", {wstring(file)});
    units.resize(static_cast<std::size_t>(length));
    return units;
}

void save_text(wstring_view file, wstring_view text) {
    const std::string path = to_utf8(file);
    const std::string beside = path + "." + to_utf8(to_string(new_guid()));
    const auto files = create_file_system();
    try {
        const auto target = open_disk_file(beside, OpenMode::createNew);
        const std::string bytes = to_utf8(text);
        write_all(*target, std::as_bytes(std::span(bytes)));
        target->flush();
        target->close();
        files->moveFile(file_url(beside), file_url(path));
    } catch (...) {
        try {
            files->remove(file_url(beside));
        } catch (const Exception&) { // the first failure is the one to report
        }
        throw;
    }
}

} // namespace host::script
