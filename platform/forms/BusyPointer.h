#pragma once

namespace forms {

/// The busy pointer while it lives.
class BusyPointer {
public:
    BusyPointer();
    ~BusyPointer();
    BusyPointer(const BusyPointer&) = delete;
    BusyPointer& operator=(const BusyPointer&) = delete;
    /// Back to the normal pointer before the end of life, and busy again.
    void Release();
    void Renew();

private:
    bool m_busy = false;
};

} // namespace forms
