// SPDX-License-Identifier: Apache-2.0
#include <core/runtime/random.h>

#include <atomic>
#include <random>

namespace core {
namespace {

class SystemRandom final : public RandomSource {
  public:
    void fill(std::span<std::byte> bytes) override {
        std::random_device device;
        std::uniform_int_distribution<unsigned> byte(0, 255);
        for (std::byte& b : bytes)
            b = static_cast<std::byte>(byte(device));
    }
};

std::atomic<RandomSource*> replacedSource{nullptr};

} // namespace

RandomSource::~RandomSource() = default;

RandomSource& current_random() noexcept {
    static SystemRandom system;
    RandomSource* const source = replacedSource.load(std::memory_order_acquire);
    return source != nullptr ? *source : system;
}

RandomSource* replace_random(RandomSource* source) noexcept {
    return replacedSource.exchange(source, std::memory_order_acq_rel);
}

GUID new_guid() {
    GUID id;
    current_random().fill(std::as_writable_bytes(std::span(&id, 1)));
    id.data3 = static_cast<std::uint16_t>((id.data3 & 0x0FFF) | 0x4000);
    id.data4[0] = static_cast<std::uint8_t>((id.data4[0] & 0x3F) | 0x80);
    return id;
}

} // namespace core
