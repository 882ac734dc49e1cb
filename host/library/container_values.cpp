// SPDX-License-Identifier: Apache-2.0
#include "host/library/container_values.h"

#include <core/runtime/utf8.h>
#include <core/storage/open_container.h>
#include <core/streams/text_file.h>

namespace core::script {

void save_to_container(wstring_view file, wstring_view name, const GenericValue& value) {
    wstring text; // made before anything is touched
    value.toString(text);
    StorageRW storage = open_container(to_utf8(file), OpenMode::create);
    const auto inner = storage.open(name, OpenMode::replace);
    TextOutStream out(inner);
    put_text(out, text);
    out.finish();
    inner->close();
}

GenericValue load_from_container(wstring_view file, wstring_view name) {
    StorageRW storage = open_container(to_utf8(file), OpenMode::read);
    TextInStream in(storage.open(name, OpenMode::read));
    return GenericValue::fromString(read_text(in));
}

} // namespace core::script
