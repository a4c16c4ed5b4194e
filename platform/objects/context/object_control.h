#pragma once

// What the transaction server calls on an object at each activation in a context, on the object's
// own thread.

#include "platform/interfaces/interface.h"

namespace orvo {

class ObjectControl {
public:
    virtual void IObjectControl_Activate() = 0;
    // The last two have no way to report a failure: implementations do not raise.
    virtual void IObjectControl_Deactivate() = 0;
    virtual bool IObjectControl_CanBePooled() = 0;

protected:
    ~ObjectControl() = default;
};

template <>
inline constexpr auto table_of<ObjectControl> = describe_unknown<ObjectControl>(
    "IObjectControl", "51372aec-cae7-11cf-be81-00aa00a2fa25",
    method<&ObjectControl::IObjectControl_Activate>("Activate"),
    bare<&ObjectControl::IObjectControl_Deactivate>("Deactivate"),
    bare<&ObjectControl::IObjectControl_CanBePooled>("CanBePooled"));

}  // namespace orvo
