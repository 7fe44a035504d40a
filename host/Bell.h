// The sound that calls for attention.
#pragma once

#include <memory>

class HostSound;

class Bell {
public:
    Bell();
    ~Bell();
    Bell(Bell const&) = delete;
    Bell& operator=(Bell const&) = delete;

    /// Begins the sound, again when it is heard already.
    void Ring();

    /// Gives the output back when the sound is over. To be called now and then.
    void Tidy();

private:
    std::unique_ptr<HostSound> sound_;
};
