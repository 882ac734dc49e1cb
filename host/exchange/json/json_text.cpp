// SPDX-License-Identifier: Apache-2.0
#include "host/exchange/json/json_text.h"

namespace host {

bool is_json_number(core::wstring_view text) noexcept {
    const auto take = [&text](core::wstring_view any) {
        const bool found = !text.empty() && any.find(text.front()) != core::wstring_view::npos;
        text.remove_prefix(found ? 1 : 0);
        return found;
    };
    const auto digits = [&take] {
        bool any = false;
        while (take(u"0123456789"))
            any = true;
        return any;
    };
    take(u"-");
    if (!take(u"0") && !digits())
        return false;
    if (take(u".") && !digits())
        return false;
    if (take(u"eE")) {
        take(u"+-");
        if (!digits())
            return false;
    }
    return text.empty();
}

} // namespace host
