#include "CGigEController.h"

#include "CGigEDevice.h"
#include "Gvcp.h"

#include <utility>
#include <vector>

namespace kiv::cam {

bool CGigEController::connect(TSharedPtr<IDevice> device, SCameraInfo camera)
{
    m_connected = false;
    auto* gige = dynamic_cast<CGigEDevice*>(device.get());
    if (!gige || !gige->isOpen() || !gige->hasControl())
        return false;
    std::vector<std::uint8_t> model;
    std::uint16_t status = 0;
    if (gige->channel().ReadMemory(gvcp::REG_MODEL_NAME, 32, model, status) != CGvcpChannel::OK)
        return false;
    if (!camera.model.empty() && gvcp::ReadText(model.data(), model.size()) != camera.model)
        return false;
    m_device = std::move(device);
    m_connected = true;
    return true;
}

void CGigEController::disconnect()
{
    m_connected = false;
    m_device = {};
}

bool CGigEController::isConnected() const
{
    return m_connected;
}

CString CGigEController::name() const
{
    return Name;
}

} // namespace kiv::cam
