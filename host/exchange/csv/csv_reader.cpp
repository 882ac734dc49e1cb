// SPDX-License-Identifier: Apache-2.0
#include "host/exchange/csv/csv_reader.h"

#include <core/strings/integer_text.h>
#include <core/values/errors.h>

#include <csv.h>
#include <unicode/ustring.h>

#include <algorithm>
#include <exception>
#include <limits>
#include <new>
#include <string_view>
#include <vector>

namespace host {

using namespace core;

namespace {

constexpr std::size_t kBlock = std::size_t{1} << 16U;

/// The parser of libcsv: it takes the text apart and unfolds quotes; this adds what it does not know, which
/// is lines and characters. No exception passes through it: the first is kept, and nothing is done after it.
class Reader {
  public:
    Reader(wstring_view name, char delimiter, const std::function<void(const CsvRow&)>& onRow)
        : name_(name), onRow_(onRow) {
        constexpr unsigned char kOptions = CSV_STRICT | CSV_STRICT_FINI | CSV_REPALL_NL;
        if (csv_init(&parser_, kOptions) != 0)
            throw std::bad_alloc();
        csv_set_delim(&parser_, static_cast<unsigned char>(delimiter));
        csv_set_space_func(&parser_, [](unsigned char) { return 0; });
        csv_set_blk_size(&parser_, kBlock);
    }
    Reader(const Reader&) = delete;
    Reader& operator=(const Reader&) = delete;
    ~Reader() { csv_free(&parser_); }

    void read(const ByteReader& bytes) {
        std::vector<std::byte> block(kBlock);
        bool first = true;
        for (std::size_t size = 0; (size = fill(block, bytes)) != 0; first = false) {
            std::string_view text(reinterpret_cast<const char*>(block.data()), size);
            if (first && text.starts_with("\xEF\xBB\xBF"))
                text.remove_prefix(3);
            check(csv_parse(&parser_, text.data(), text.size(), &fieldEnd, &rowEnd, this) == text.size());
        }
        check(csv_fini(&parser_, &fieldEnd, &rowEnd, this) == 0);
    }

  private:
    static std::size_t fill(std::span<std::byte> block, const ByteReader& bytes) {
        std::size_t size = 0;
        for (std::size_t got = 1; got != 0 && size < block.size(); size += got)
            got = bytes(block.subspan(size));
        return size;
    }
    void check(bool parsed) {
        if (error_)
            std::rethrow_exception(error_);
        if (parsed)
            return;
        if (csv_error(&parser_) == CSV_EPARSE)
            fail("IDS_SCRIPT_CSV_QUOTE");
        throw std::bad_alloc();
    }
    [[noreturn]] void fail(const char* id) const {
        throw_error<ContextException>(id, {name_, string_intto(line_)});
    }

    /// What libcsv calls back, as long as nothing has failed.
    template <class Work>
    void guarded(Work work) noexcept {
        if (error_)
            return;
        try {
            work();
        } catch (...) {
            error_ = std::current_exception();
        }
    }
    static void fieldEnd(void* bytes, std::size_t size, void* self) noexcept {
        auto& reader = *static_cast<Reader*>(self);
        reader.guarded([&] { reader.addField({static_cast<const char*>(bytes), size}); });
    }
    static void rowEnd(int end, void* self) noexcept {
        auto& reader = *static_cast<Reader*>(self);
        reader.guarded([&] { reader.endRow(end); });
    }

    void addField(std::string_view bytes) {
        for (std::size_t i = bytes.find_first_of("\r\n"); i < bytes.size();
             i = bytes.find_first_of("\r\n", i + 1))
            breaks_ += bytes[i] == '\n' || !bytes.substr(i + 1).starts_with('\n') ? 1U : 0U;
        const std::size_t begin = text_.size();
        text_.resize(begin + bytes.size()); // no text has more units than bytes
        text_.resize(begin + decode(bytes, text_.data() + begin));
        ends_.push_back(text_.size());
    }

    /// Returns the count of units.
    std::size_t decode(std::string_view bytes, wchar* out) const {
        unsigned char all = 0;
        for (std::size_t i = 0; i < bytes.size(); ++i) {
            const auto byte = static_cast<unsigned char>(bytes[i]);
            all = static_cast<unsigned char>(all | byte);
            out[i] = byte;
        }
        if (all < 0x80)
            return bytes.size();
        if (bytes.size() > std::numeric_limits<std::int32_t>::max())
            throw std::bad_alloc();
        const auto size = static_cast<std::int32_t>(bytes.size());
        std::int32_t length = 0;
        UErrorCode status = U_ZERO_ERROR;
        u_strFromUTF8(out, size, &length, bytes.data(), size, &status);
        if (U_FAILURE(status))
            fail("IDS_SCRIPT_CSV_NOT_UTF8");
        return static_cast<std::size_t>(length);
    }

    /// `end` is the unit that ends the row, or -1 for the end of the text. A row without fields is an empty
    /// line, or the second half of a line break.
    void endRow(int end) {
        const bool halfBreak = ends_.empty() && end == '\n' && afterReturn_;
        afterReturn_ = end == '\r';
        if (!ends_.empty()) {
            fields_.clear();
            std::size_t begin = 0;
            for (const std::size_t fieldEnd : ends_) {
                fields_.push_back(wstring_view(text_).substr(begin, fieldEnd - begin));
                begin = fieldEnd;
            }
            onRow_({fields_, line_});
            ends_.clear();
            text_.clear();
        }
        line_ += breaks_ + (halfBreak ? 0U : 1U);
        breaks_ = 0;
    }

    wstring name_;
    const std::function<void(const CsvRow&)>& onRow_;
    csv_parser parser_{};
    std::uint64_t line_ = 1;   // of the row that is read
    std::uint64_t breaks_ = 0; // in its fields
    bool afterReturn_ = false;
    wstring text_; // its fields, one behind the other
    std::vector<std::size_t> ends_;
    std::vector<wstring_view> fields_;
    std::exception_ptr error_;
};

} // namespace

void read_csv(const ByteReader& bytes, wstring_view name, char delimiter,
              const std::function<void(const CsvRow&)>& onRow) {
    Reader(name, delimiter, onRow).read(bytes);
}

} // namespace host
