#include "utils/fft.hpp"

#include "utils/assertion.hpp"
#include "utils/vector_functions.hpp"

#include <array>
#include <atomic>
#include <kiss_fftr.h>

namespace TALVO::UTILS {
namespace {

struct StateFree {
    void operator()(kiss_fftr_state* state) const { kiss_fftr_free(state); }
};
using State = std::unique_ptr<kiss_fftr_state, StateFree>;

/// The kissfft states of one size and direction. A state has a scratch buffer, so that it serves
/// one transform at a time: each transform takes a state and puts it back, and one is made only
/// when more threads run at once than ever before. No thread waits for another.
class StatePool {
  public:
    StatePool(int size, int inverse) : size_(size), inverse_(inverse) { put(make()); }
    ~StatePool() {
        for (auto& place : places_)
            State(place.load(std::memory_order_relaxed));
    }
    StatePool(StatePool const&) = delete;
    StatePool& operator=(StatePool const&) = delete;

    State take() {
        for (auto& place : places_)
            if (place.load(std::memory_order_relaxed) != nullptr)
                if (State state(place.exchange(nullptr, std::memory_order_acquire)); state)
                    return state;
        return make();
    }

    void put(State state) {
        for (auto& place : places_) {
            kiss_fftr_state* empty = nullptr;
            if (place.compare_exchange_strong(empty, state.get(), std::memory_order_release,
                                              std::memory_order_relaxed)) {
                static_cast<void>(state.release());
                return;
            }
        }
    }

  private:
    State make() const { return State(kiss_fftr_alloc(size_, inverse_, nullptr, nullptr)); }

    int size_;
    int inverse_;
    std::array<std::atomic<kiss_fftr_state*>, 32> places_{};
};

class FFT_KISS : public FFT {
  public:
    explicit FFT_KISS(std::size_t size)
        : FFT(size), forward_(static_cast<int>(size), 0), inverse_(static_cast<int>(size), 1) {}

    void computeForward(std::vector<float> const& input, std::vector<std::complex<float>>& out) override {
        TALVO_ASSERT(input.size() == size(), "input.size()==size()");
        out.resize(size() / 2 + 1);
        computeForward(input.data(), input.size(), out.data(), out.size());
    }

    void computeForward(float const* in, std::size_t inSize, std::complex<float>* out,
                        std::size_t outSize) override {
        TALVO_ASSERT((outSize - 1) * 2 == inSize && inSize == size(),
                     "(outSize-1)*2==inSize && inSize==size()");
        State state = forward_.take();
        kiss_fftr(state.get(), in, reinterpret_cast<kiss_fft_cpx*>(out));
        forward_.put(std::move(state));
    }

    void computeBackward(std::vector<std::complex<float>> const& input, std::vector<float>& out) override {
        TALVO_ASSERT((input.size() - 1) * 2 == size(), "(input.size()-1) * 2 == size()");
        out.resize(size());
        computeBackward(input.data(), input.size(), out.data(), out.size());
        UTIL_FUNCTIONS::vectorMultScalar(out, 1.0f / static_cast<float>(size()), out);
    }

    void computeBackward(std::complex<float> const* in, std::size_t inSize, float* out,
                         std::size_t outSize) override {
        TALVO_ASSERT((inSize - 1) * 2 == outSize && outSize == size(),
                     "(inSize-1)*2==outSize && outSize==size()");
        State state = inverse_.take();
        kiss_fftri(state.get(), reinterpret_cast<kiss_fft_cpx const*>(in), out);
        inverse_.put(std::move(state));
    }

  private:
    StatePool forward_;
    StatePool inverse_;
};

} // namespace

std::shared_ptr<FFT> FFT::create(std::size_t size) {
    TALVO_ASSERT(size > 0, "size>0");
    return std::make_shared<FFT_KISS>(size);
}

} // namespace TALVO::UTILS
