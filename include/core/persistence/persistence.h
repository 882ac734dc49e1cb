// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <core/lists/nesting.h>
#include <core/runtime/unknown_impl.h>

/// How objects write themselves into the brace-list form and read themselves back.
namespace core {

class ListInStream;
class ListOutStream;

/// Where objects are written: one brace-list stream.
class IOutPersistenceStorage : public IUnknown {
  public:
    static constexpr GUID IID = "93cce00b-3354-4e59-9d8a-84fad33895c7"_guid;
    [[nodiscard]] virtual ListOutStream& listStream() noexcept = 0;
    [[nodiscard]] virtual Nesting& nesting() noexcept = 0;

  protected:
    ~IOutPersistenceStorage() = default;
};

/// Where objects are read from: one brace-list stream.
class IInPersistenceStorage : public IUnknown {
  public:
    static constexpr GUID IID = "4a6e728e-2bbf-4b8a-8471-9600cf11e759"_guid;
    [[nodiscard]] virtual ListInStream& listStream() noexcept = 0;
    [[nodiscard]] virtual Nesting& nesting() noexcept = 0;

  protected:
    ~IInPersistenceStorage() = default;
};

/// A storage over a stream that the caller owns; an object of the caller's, too.
class ListOutStorage final : public IUnknownImpl<ListOutStorage, IOutPersistenceStorage> {
  public:
    explicit ListOutStorage(ListOutStream& stream) noexcept : stream_(stream) {}
    ListOutStream& listStream() noexcept override { return stream_; }
    Nesting& nesting() noexcept override { return nesting_; }

  private:
    ListOutStream& stream_;
    Nesting nesting_;
};

class ListInStorage final : public IUnknownImpl<ListInStorage, IInPersistenceStorage> {
  public:
    explicit ListInStorage(ListInStream& stream) noexcept : stream_(stream) {}
    ListInStream& listStream() noexcept override { return stream_; }
    Nesting& nesting() noexcept override { return nesting_; }

  private:
    ListInStream& stream_;
    Nesting nesting_;
};

/// An object that can be written and made again from what was written. Its class id, which the writer of the
/// enclosing data puts in front, tells the reader what to make.
class IPersistableObject : public IUnknown {
  public:
    static constexpr GUID IID = "fe2559b1-730d-4e62-81d8-79c04fbfe236"_guid;

    [[nodiscard]] virtual const GUID& getCLSID() const noexcept = 0;
    /// Writes the object's body, one element of a list.
    virtual void serialize(IOutPersistenceStorage* storage) const = 0;
    /// Takes the state from a body. ListStreamException when that is malformed; the object is then unchanged.
    virtual void deserialize(IInPersistenceStorage* storage) = 0;

  protected:
    ~IPersistableObject() = default;
};

/// Implements the class id of a persistable object. `Object` is the class itself.
template <class Object, const GUID* clsid>
class IPersistableObjectImpl : public IPersistableObject {
  public:
    const GUID& getCLSID() const noexcept override { return *clsid; }

  protected:
    ~IPersistableObjectImpl() = default;
};

} // namespace core
