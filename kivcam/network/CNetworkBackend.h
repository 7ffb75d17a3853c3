#pragma once

#include <kivcam/CBackend.h>

namespace kiv::cam {

// The machine's network adapters.
class CNetworkBackend : public CBackend {
public:
    void interfaces(TArray<TSharedPtr<IInterface>>& out) override;
};

} // namespace kiv::cam
