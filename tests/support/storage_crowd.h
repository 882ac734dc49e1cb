// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "tests/support/storage_model.h"

#include <core/storage/errors.h>

#include <functional>
#include <optional>
#include <stdexcept>
#include <utility>

namespace core::test {

/// A container in use from all sides at once: two handles that change it in turns, a file that stays open for
/// writing while other changes are made, and a file that stays open for reading while everything moves around
/// it.
class Crowd {
  public:
    Crowd(std::function<InterfacePtr<IFile>()> open, const StorageLayout& layout, Random& random)
        : random_(random), first_(open(), layout), second_(open(), layout) {
        model_[kSteady] = steady_ = random.bytes(100000);
        first_.put(kSteady, steady_);
        reader_ = second_.open(kSteady, OpenMode::read);
    }

    /// Does something at random. At most one state becomes another.
    void step() {
        switch (random_.below(10)) {
        case 0:
            takeBack();
            break;
        case 1:
            together();
            break;
        case 2:
            if (!writer_ && random_.below(2) == 0)
                changer().compact();
            break;
        case 3:
            letGo();
            break;
        case 4:
        case 5:
        case 6:
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
        // Who has a file open for writing has space in use that no commit knows of yet.
        const StorageCheck check = (writer_ ? second_ : first_).check();
        if (!check.isClean())
            throw std::logic_error("a container is not whole");
        const StorageInfo info = second_.info();
        if (!writer_ && info.fileLength != info.end)
            throw std::logic_error("the end of a file that nobody uses was not given back");
        const std::size_t position = random_.below(steady_.size());
        Bytes read(random_.below(steady_.size() - position) + 1);
        const std::size_t done = read_all_at(*reader_, position, read);
        if (done != read.size() ||
            !std::equal(read.begin(), read.end(), steady_.begin() + static_cast<std::ptrdiff_t>(position)))
            throw std::logic_error("a file that was not changed reads otherwise");
        if (random_.below(8) == 0)
            reader_ = (random_.below(2) == 0 ? first_ : second_).open(kSteady, OpenMode::read);
    }

    [[nodiscard]] const Model& model() const noexcept { return model_; }

  private:
    static inline const wstring kSteady = u"steady";
    static inline const wstring kLate = u"late";

    /// The turn is the first handle's while its file is open for writing.
    StorageRW& changer() { return writer_ || random_.below(2) == 0 ? first_ : second_; }

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

    /// Changes that come to nothing, those of the open file included.
    void takeBack() {
        {
            StorageRW& storage = changer();
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
    Model model_;
    Bytes steady_;
    StorageRW first_;
    StorageRW second_;
    InterfacePtr<IFile> reader_;
    InterfacePtr<IFile> writer_;
    Bytes written_;
};

} // namespace core::test
