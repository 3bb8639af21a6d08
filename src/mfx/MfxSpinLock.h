#pragma once
// The dispatcher's process-wide lock around loading and unloading: a spin on
// an atomic exchange that yields the thread between tries.
#include <atomic>
#include <thread>

namespace kestrelink::mfx {

class DispatcherLock {
 public:
  DispatcherLock() {
    bool expected = false;
    while (!Flag().compare_exchange_weak(expected, true, std::memory_order_acquire)) {
      expected = false;
      std::this_thread::yield();
    }
  }
  ~DispatcherLock() { Flag().store(false, std::memory_order_release); }
  DispatcherLock(const DispatcherLock&) = delete;
  DispatcherLock& operator=(const DispatcherLock&) = delete;

 private:
  static std::atomic<bool>& Flag() {
    static std::atomic<bool> flag{false};
    return flag;
  }
};

}  // namespace kestrelink::mfx
