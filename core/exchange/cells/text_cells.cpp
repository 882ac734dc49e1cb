// SPDX-License-Identifier: Apache-2.0
#include "core/exchange/cells/text_cells.h"

#include "core/strings/table_hash.h"

#include <core/runtime/errors.h>
#include <core/streams/converter.h>

#include <algorithm>
#include <cstring>
#include <memory>

namespace core {
namespace {

/// Of so many rows, nine in ten must be different for a dictionary to be given up.
constexpr std::size_t kOf = 10;
constexpr std::size_t kDifferent = 9;

bool is_ascii_text(std::string_view text) noexcept {
    unsigned char all = 0;
    for (const char c : text)
        all = static_cast<unsigned char>(all | static_cast<unsigned char>(c));
    return all < 0x80;
}

} // namespace

Value text_value(std::string_view text, wstring& scratch) {
    if (!is_ascii_text(text)) {
        scratch = decode_text(std::as_bytes(std::span(text)), Encoding());
        return Value(wstring_view(scratch));
    }
    scratch.resize(std::max(scratch.size(), text.size()));
    std::copy(text.begin(), text.end(), scratch.begin());
    return Value(wstring_view(scratch).substr(0, text.size()));
}

std::uint64_t TextCells::hash(std::string_view text) noexcept {
    static const std::uint64_t seed = table_hash_seed();
    std::uint64_t hash = seed ^ text.size();
    const char* at = text.data();
    std::size_t left = text.size();
    for (; left >= 8; left -= 8, at += 8) {
        std::uint64_t word = 0;
        std::memcpy(&word, at, 8);
        hash = table_hash_step(hash, word);
    }
    std::uint64_t word = 0;
    std::copy_n(at, left, reinterpret_cast<char*>(&word)); // an empty text may be without memory
    return table_hash_step(hash, word);
}

void TextCells::add(std::string_view text) {
    if (!coded_) {
        values_.push_back(text_value(text, scratch_));
        return;
    }
    const std::uint64_t of = hash(text);
    const Code code = index_.find(of, [&](Code candidate) { return known(candidate) == text; });
    if (code != HashIndex::kNone)
        codes_.push_back(code);
    else
        addNew(text, of);
}

void TextCells::addNew(std::string_view text, std::uint64_t hash) {
    const Code code = dictionary_.add(text_value(text, scratch_));
    bytes_ += text;
    ends_.push_back(bytes_.size());
    index_.add(hash, code);
    codes_.push_back(code);
    if (codes_.size() < nextLook_)
        return;
    if (dictionary_.size() > codes_.size() / kOf * kDifferent)
        giveDictionaryUp();
    nextLook_ = 2 * codes_.size();
}

void TextCells::giveDictionaryUp() {
    values_.reserve(std::max(codes_.capacity(), codes_.size()));
    for (const Code code : codes_)
        values_.push_back(dictionary_[code]);
    coded_ = false;
    codes_ = {};
    bytes_ = {};
    ends_ = {};
    index_.clear();
    dictionary_ = {};
}

void TextCells::addEmpty() {
    if (coded_)
        codes_.push_back(0);
    else
        values_.emplace_back();
}

void TextCells::addValue(const Value& value) {
    if (const wstring_view* const text = value.asString(); coded_ && text != nullptr)
        add(encode_text(*text, Encoding()));
    else if (coded_ && value.isUndefined())
        addEmpty();
    else {
        if (coded_)
            giveDictionaryUp();
        values_.push_back(value);
    }
}

CellColumn TextCells::finish() {
    if (!coded_)
        return CellColumn::ofValues(std::move(values_));
    return CellColumn::ofCodes(std::make_unique<ValueDictionary>(std::move(dictionary_)), std::move(codes_));
}

} // namespace core
