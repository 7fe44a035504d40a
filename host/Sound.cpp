// The sound output of SDL, and one without a device.
#include "Sound.h"

#include <SDL.h>

#include <chrono>
#include <condition_variable>
#include <mutex>
#include <thread>
#include <vector>

namespace {

/// SDL's audio service for as long as this exists.
class SoundService {
public:
    SoundService()
    {
        // Sound alone gives SDL no say in what a signal does to the process.
        if (!SDL_WasInit(SDL_INIT_EVENTS)) SDL_SetHint(SDL_HINT_NO_SIGNAL_HANDLERS, "1");
        isUp_ = SDL_InitSubSystem(SDL_INIT_AUDIO) == 0;
    }
    ~SoundService()
    {
        if (isUp_) SDL_QuitSubSystem(SDL_INIT_AUDIO);
    }
    SoundService(SoundService const&) = delete;
    SoundService& operator=(SoundService const&) = delete;

    bool IsUp() const { return isUp_; }

private:
    bool isUp_ = false;
};

class DeviceSound : public HostSound {
public:
    explicit DeviceSound(HostSoundRequest const& request) : fill_(request.fill)
    {
        if (!service_.IsUp()) return;
        SDL_AudioSpec wanted{};
        wanted.freq = request.rate;
        wanted.format = request.isSwapped == (SDL_BYTEORDER == SDL_LIL_ENDIAN) ? AUDIO_S16MSB : AUDIO_S16LSB;
        wanted.channels = 2;
        wanted.samples = request.blockSize;
        wanted.userdata = this;
        wanted.callback = [](void* self, Uint8* out, int bytes) {
            static_cast<DeviceSound*>(self)->fill_(out, static_cast<unsigned long>(bytes));
        };
        // No changes are allowed: SDL converts where the device wants something else.
        device_ = SDL_OpenAudioDevice(nullptr, 0, &wanted, nullptr, 0);
    }
    ~DeviceSound() override
    {
        if (device_) SDL_CloseAudioDevice(device_);
    }
    DeviceSound(DeviceSound const&) = delete;
    DeviceSound& operator=(DeviceSound const&) = delete;

    bool IsOpen() const { return device_ != 0; }
    void Start() override { SDL_PauseAudioDevice(device_, 0); }

private:
    SoundService service_;
    HostSoundFill fill_;
    SDL_AudioDeviceID device_ = 0;
};

/// Takes sound as a device would, and drops it.
class SilentSound : public HostSound {
public:
    explicit SilentSound(HostSoundRequest const& request)
        : fill_(request.fill), block_(4UL * request.blockSize),
          pace_(std::chrono::nanoseconds(1000000000LL * request.blockSize / request.rate))
    {
    }
    ~SilentSound() override
    {
        {
            std::scoped_lock const lock(mutex_);
            isStopped_ = true;
        }
        stop_.notify_all();
        if (thread_.joinable()) thread_.join();
    }
    SilentSound(SilentSound const&) = delete;
    SilentSound& operator=(SilentSound const&) = delete;

    void Start() override
    {
        if (!thread_.joinable()) thread_ = std::thread([this] { Run(); });
    }

private:
    void Run()
    {
        auto next = std::chrono::steady_clock::now();
        std::unique_lock lock(mutex_);
        while (!stop_.wait_until(lock, next, [this] { return isStopped_; })) {
            fill_(block_.data(), block_.size());
            next += pace_;
        }
    }

    HostSoundFill fill_;
    std::vector<char> block_;
    std::chrono::nanoseconds pace_;
    std::mutex mutex_;
    std::condition_variable stop_;
    bool isStopped_ = false;
    std::thread thread_;
};

}  // namespace

std::unique_ptr<HostSound> Open_Host_Sound(HostSoundRequest const& request)
{
    auto device = std::make_unique<DeviceSound>(request);
    if (device->IsOpen()) return device;
    return std::make_unique<SilentSound>(request);
}
