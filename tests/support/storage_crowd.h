// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "tests/support/storage_model.h"

#include <core/storage/errors.h>

#include <functional>
#include <iterator>
#include <span>
#include <stdexcept>
#include <utility>
#include <vector>

namespace core::test {

/// A container in use from all sides at once: two handles that change it in turns, a file that stays open for
/// writing while other changes are made, and files that stay open for reading while everything moves around
/// them and others take their names.
class Crowd {
  public:
    Crowd(std::function<InterfacePtr<IFile>()> open, const StorageLayout& layout, Random& random)
        : random_(random), open_(std::move(open)), first_(open_(), layout), second_(open_(), layout),
          model_(contents(first_)) {
        putSteady();
    }

    /// Does something at random. At most one state becomes another.
    void step() {
        if (!model_.contains(kSteady))
            return putSteady();
        switch (random_.below(12)) {
        case 0:
            takeBack();
            break;
        case 1:
            together();
            break;
        case 2:
            if (random_.below(2) == 0)
                changer().compact();
            break;
        case 3:
            letGo();
            break;
        case 4:
            if (!writer_ && random_.below(6) == 0)
                beginAgain();
            break;
        case 11:
            if (!writer_ && random_.below(4) == 0)
                letAllGo();
            break;
        case 5:
            crowdIn();
            break;
        case 6:
        case 7:
        case 8:
            write();
            break;
        default:
            change(random_, changer(), model_);
        }
    }

    /// Throws unless everybody sees what the model holds and nothing is wrong with the container.
    void check() {
        for (const StorageRW* const storage : {&first_, &second_}) {
            if (contents(*storage) != model_)
                throw std::logic_error("a handle does not see what was changed");
        }
        if (!(random_.below(2) == 0 ? first_ : second_).check().isClean())
            throw std::logic_error("a container is not whole");
        read();
        if (random_.below(3) == 0)
            openReader();
        if (random_.below(3) == 0 && !readers_.empty())
            readers_.erase(readers_.begin() + static_cast<std::ptrdiff_t>(random_.below(readers_.size())));
    }

    [[nodiscard]] const Model& model() const noexcept { return model_; }

  private:
    /// A file open for reading, and what it held when it was opened.
    struct Reader {
        InterfacePtr<IFile> file;
        Bytes content;
    };

    static inline const wstring kSteady = u"steady";
    static inline const wstring kLate = u"late";

    StorageRW& changer() { return random_.below(2) == 0 ? first_ : second_; }

    void putSteady() {
        const Bytes content = random_.bytes(100000);
        first_.put(kSteady, content);
        model_[kSteady] = content;
        steady_ = {second_.open(kSteady, OpenMode::read), content};
    }

    /// An empty container takes the place of this one, under the hands of all who have it open.
    void beginAgain() {
        StorageRW::replace(*open_(), first_.layout());
        model_.clear();
        steady_ = {};
    }

    void openReader() {
        if (model_.empty())
            return;
        const auto file =
            std::next(model_.begin(), static_cast<std::ptrdiff_t>(random_.below(model_.size())));
        StorageRW& storage = random_.below(2) == 0 ? first_ : second_;
        readers_.push_back({storage.open(file->first, OpenMode::read), file->second});
    }

    /// Nobody reads any more what is not committed.
    void letAllGo() {
        readers_.clear();
        steady_ = {};
        putSteady();
        const StorageInfo info = second_.info();
        if (info.fileLength != info.end)
            throw std::logic_error("the end of a file that nobody uses was not given back");
    }

    /// What is open for reading gives what it held when it was opened, whatever became of it.
    void read() {
        if (steady_.file && !agrees(steady_))
            throw std::logic_error("a file that was not changed reads otherwise");
        for (const Reader& reader : readers_) {
            if (!agrees(reader))
                throw std::logic_error("a file that was replaced reads otherwise");
        }
    }
    bool agrees(const Reader& reader) {
        const std::size_t position = random_.below(reader.content.size() + 1);
        const std::span<const std::byte> rest = std::span(reader.content).subspan(position);
        Bytes bytes(random_.below(rest.size() + 1));
        return read_all_at(*reader.file, position, bytes) == bytes.size() &&
               std::equal(bytes.begin(), bytes.end(), rest.begin());
    }

    void write() {
        if (!writer_) {
            const bool anew = random_.below(2) == 0;
            writer_ = first_.open(kLate, anew ? OpenMode::replace : OpenMode::create);
            written_ = anew || !model_.contains(kLate) ? Bytes() : model_[kLate];
        }
        edit(random_, *writer_, written_);
        switch (random_.below(4)) {
        case 0:
            writer_->flush();
            model_[kLate] = written_;
            break;
        case 1:
            writer_->close();
            writer_ = nullptr;
            model_[kLate] = written_;
            break;
        }
    }

    /// An exception takes the open file along.
    void letGo() {
        try {
            const InterfacePtr<IFile> held = std::exchange(writer_, nullptr);
            throw std::runtime_error("no more");
        } catch (const std::runtime_error&) {
        }
    }

    void together() {
        StorageRW& storage = changer();
        StorageTransaction transaction(storage);
        for (std::size_t i = random_.below(6); i > 0; --i)
            change(random_, storage, model_);
        transaction.commit();
    }

    /// A group of changes to small files with long names: a few of them fill a node of a tree.
    void crowdIn() {
        StorageRW& storage = changer();
        StorageTransaction transaction(storage);
        for (std::size_t i = random_.below(80); i > 0; --i) {
            const wstring name = wstring(150, u'm') +
                                 wstring(1 + random_.below(12), static_cast<wchar>(u'a' + random_.below(12)));
            if (model_.contains(name) && random_.below(2) == 0) {
                storage.remove(name);
                model_.erase(name);
            } else {
                storage.put(name, model_[name] = random_.bytes(random_.below(20)));
            }
        }
        transaction.commit();
    }

    /// Changes that come to nothing, those of the open file included.
    void takeBack() {
        {
            StorageRW& storage = writer_ ? first_ : changer();
            StorageTransaction transaction(storage);
            Model ignored = model_;
            for (std::size_t i = random_.below(4); i > 0; --i)
                change(random_, storage, ignored);
        }
        if (const InterfacePtr<IFile> lost = std::exchange(writer_, nullptr)) {
            try {
                lost->close();
            } catch (const StorageException&) {
                return;
            }
            throw std::logic_error("a file outlives the changes that it was part of");
        }
    }

    Random& random_;
    std::function<InterfacePtr<IFile>()> open_;
    StorageRW first_;
    StorageRW second_;
    Model model_;
    Reader steady_; // of a file that only moves
    std::vector<Reader> readers_;
    InterfacePtr<IFile> writer_;
    Bytes written_;
};

} // namespace core::test
