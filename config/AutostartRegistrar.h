#pragma once

namespace tavren {

// Registers the client to start when the user logs in to the operating system. Behind an
// interface so that the settings can be saved in tests without touching the real session.
class AutostartRegistrar {
  public:
    virtual ~AutostartRegistrar() = default;
    // True when the registration now matches `enabled`.
    virtual bool setEnabled(bool enabled) = 0;
    virtual bool isEnabled() const = 0;
};

}  // namespace tavren
