// SPDX-License-Identifier: Apache-2.0
#include <core/exchange/json_text.h>

namespace core {

bool is_json_number(wstring_view text) noexcept {
    const auto take = [&text](wstring_view any) {
        const bool found = !text.empty() && any.find(text.front()) != wstring_view::npos;
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

} // namespace core
