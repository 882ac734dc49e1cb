// SPDX-License-Identifier: Apache-2.0
#include "core/documents/piece_tree.h"

#include <core/documents/document_file.h>
#include <core/streams/text_file.h>

#include <algorithm>
#include <vector>

namespace core {
namespace {

constexpr std::uint32_t kStoreUnits = 64 << 10; ///< of a store that is filled by reading

/// Fills stores and makes a text of them.
class Loading {
  public:
    explicit Loading(bool unicodeEnds) noexcept : unicodeEnds_(unicodeEnds) {}

    void append(wstring_view units) {
        while (!units.empty()) {
            if (!store_ || store_->room() == 0) {
                finishStore();
                store_ = detail::StoreRef(detail::UnitStore::create(kStoreUnits, unicodeEnds_));
            }
            const std::size_t count = std::min<std::size_t>(units.size(), store_->room());
            store_->append(units.substr(0, count));
            units.remove_prefix(count);
        }
    }
    [[nodiscard]] TextSnapshot finish() {
        finishStore();
        const detail::PieceTree tree(pieces_);
        return {tree.root().get(), unicodeEnds_};
    }

  private:
    void finishStore() {
        if (!store_ || store_->size() == 0)
            return;
        const std::uint32_t size = store_->size();
        if (size < kStoreUnits) { // the last one takes no more room than it has units
            detail::StoreRef exact(detail::UnitStore::create(size, unicodeEnds_));
            exact->append({store_->units(), size});
            store_ = std::move(exact);
        }
        pieces_.emplace_back(std::move(store_), 0, size);
    }

    bool unicodeEnds_;
    detail::StoreRef store_;
    std::vector<detail::Piece> pieces_;
};

} // namespace

void read_document(TextManager& document, TextReader& reader) {
    Loading loading(document.text().hasUnicodeEnds());
    for (wstring_view units = reader.look(); !units.empty(); units = reader.look()) {
        loading.append(units);
        reader.consume(units.size());
    }
    document.assign(loading.finish());
}

void write_document(const TextSnapshot& text, TextWriter& writer) {
    for (std::uint64_t at = 0; at < text.size();) {
        const wstring_view units = text.chunk(at);
        writer.write(units);
        at += units.size();
    }
}

DetectedEncoding load_document(TextManager& document, IFileSystem& files, const wstring& url,
                               const TextReaderOptions& options) {
    TextReader reader(files.openURL(url, OpenMode::read), options);
    read_document(document, reader);
    return reader.encoding();
}

void save_document(TextManager& document, IFileSystem& files, const wstring& url,
                   const TextWriterOptions& options) {
    const TextSnapshot text = document.text();
    if (document.isGroupOpen())
        document.markSaved(); // which refuses it, before anything is written
    save_text(
        files, url,
        [&](wostream& out) {
            for (std::uint64_t at = 0; at < text.size();) {
                const wstring_view units = text.chunk(at);
                put_text(out, units);
                at += units.size();
            }
        },
        options);
    document.markSaved();
}

} // namespace core
