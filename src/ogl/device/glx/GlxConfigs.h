// The pixel formats of an X display: its X-renderable RGBA GLXFBConfigs,
// numbered from 1 in the order the server lists them, and what the
// window-system adapters and the devices need to know of each.
#pragma once

#include "ogl/device/NativeHandles.h"
#include "ogl/device/Platform.h"

#include <GL/glx.h>

#include <vector>

namespace Tev::Chart::Ogl::Detail {

// The formats of the device's display, listed on first use of the record
// (listing is slow: GLX looks every config up linearly on each query).
std::vector<void*> const& GlxFormatList(NativeDevice& p_device);
int GlxFormatCount(NativeDevice& p_device);
// The config of format p_format (1-based), null when there is none.
GLXFBConfig GlxFormatConfig(NativeDevice& p_device, int p_format);
// The format of a config, 0 when it is not one of the display's formats.
int GlxFormatOf(NativeDevice& p_device, GLXFBConfig p_config);
// The config the device's drawable uses: the substituted one, else that of
// its pixel format.
GLXFBConfig GlxActiveConfig(NativeDevice& p_device);

int GlxAttribute(Display* p_display, GLXFBConfig p_config, int p_attribute);
// The depth of the config's X visual, 0 when it has none.
int GlxVisualDepth(Display* p_display, GLXFBConfig p_config);
unsigned long GlxVisualId(Display* p_display, GLXFBConfig p_config);

// Mesa's software rasteriser uploads a pbuffer (and a pixmap) as an image
// of the config's visual depth into a drawable of its buffer size; the
// server rejects the upload (BadMatch, fatal) when they differ, as with
// 8/8/8/8 configs on 24-bit visuals. Safe: no visual, or equal depths.
bool GlxIsPbufferSafe(Display* p_display, GLXFBConfig p_config);
// The depth of a pixmap the config can render into: its visual's, or its
// buffer size when it has no visual.
int GlxPixmapDepth(Display* p_display, GLXFBConfig p_config);

// The descriptor of a config as a Windows ICD would fill it.
void GlxDescribe(Display* p_display, GLXFBConfig p_config, PixelFormatDescriptor& p_descriptor);

}  // namespace Tev::Chart::Ogl::Detail

namespace Tev::Chart::Ogl::Detail {
// Whether two configs have the same buffers (colour, alpha, depth,
// stencil, accumulation, aux, double buffering, stereo, samples, caveat):
// what a caller asked for when it chose one of them.
bool GlxSameBuffers(Display* p_display, GLXFBConfig p_lhs, GLXFBConfig p_rhs);
}  // namespace Tev::Chart::Ogl::Detail
