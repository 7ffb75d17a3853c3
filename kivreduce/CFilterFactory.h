#pragma once

#include <kiv/CString.h>
#include <kiv/SGuid.h>
#include <kiv/TArray.h>
#include <kivreduce/kivreduce_export.h>

namespace kiv::reduce {

// The catalogue of image reduction filters: what turns a camera's raw samples into a picture.
//   "Passthrough8"  8-bit samples, shown as they are
//   "Linear16"      10- to 16-bit unsigned samples, scaled linearly between their minimum and
//                   maximum
//   "Signed16"      signed 16-bit samples, scaled around zero
//   "Float32"       floating-point samples (temperatures, intensities), scaled to their range
//   "Colour"        colour and Bayer samples, converted to RGB
class KIVREDUCE_EXPORT CFilterFactory {
public:
    CFilterFactory() = default;
    virtual ~CFilterFactory();
    CFilterFactory(const CFilterFactory&) = delete;
    CFilterFactory& operator=(const CFilterFactory&) = delete;

    // Appends the names of all filters, in the order above.
    virtual void getFilterNames(TArray<CString>& out);
    // The filter that suits a pixel type; empty for an identifier that is not a pixel type.
    virtual CString defaultFilterFor(const SGuid& pixelType);
};

KIVREDUCE_EXPORT CFilterFactory* filterFactory();

} // namespace kiv::reduce
