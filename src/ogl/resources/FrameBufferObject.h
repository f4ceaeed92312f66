// A GL framebuffer object with one colour attachment per draw buffer the
// context supports and one combined depth-stencil attachment, each a 2-D
// texture the object makes and sizes itself.
//
// Changes (size, attachments switched on or off, re-formatted, the read
// buffer) only mark the object modified; GL is told at the next bind, and a
// bind with nothing modified rebuilds nothing. Binding goes through the
// facade (Tgl::Bind), which keeps the stack of bound framebuffers. GL makes
// the framebuffer at its first bind, so a label (SetLabel) takes from then.
#pragma once

#include "framework/types/MinMax.h"
#include "framework/types/Size.h"
#include "framework/utility/Attribute.h"
#include "framework/utility/WatchedRef.h"
#include "ogl/api/Export.h"
#include "ogl/resources/FrameBufferAttachments.h"
#include "ogl/resources/TglResource.h"
#include "ogl/tgl/FBOApi.h"

#include <boost/function.hpp>

#include <vector>

namespace Tev::Chart::Ogl {

class TEVOGL_API FrameBufferObject final : public TglObject {
public:
    using ColorAttachment = FrameBufferColorAttachment;
    using DepthStencilAttachment = FrameBufferDepthStencilAttachment;
    using ColorBuffers = FrameBufferColorBuffers;
    // Renders one mip level, of the size given, into the framebuffer.
    using MipMapCallback = boost::function<void(Types::Size const&)>;

    ~FrameBufferObject() override;

    unsigned Handle() const { return Name(); }

    // The size of every attachment; starts at 0 × 0.
    Types::Size const& GetSize() const { return _size; }
    void SetSize(Types::Size const& p_size);
    ColorBuffers& Attachments() { return _attachments; }
    DepthStencilAttachment& DepthStencil() { return _depthStencil; }
    // The colour attachment reads come from; none, or one without a
    // texture, reads from GL_NONE.
    Utility::Attribute<unsigned> const& ReadBuffer() const { return _readBuffer; }
    void SetReadBuffer(Utility::Attribute<unsigned> const& p_index);

    // Something must be rebuilt at the next bind.
    bool Modified() const;
    bool IsBound() const { return _bound; }
    // GL_COLOR_ATTACHMENT0 + i of every enabled attachment, as of the last
    // rebuild.
    std::vector<unsigned> const& DrawBuffers() const { return _drawBuffers; }

    // Lets p_callback render levels 1 and up of a colour attachment of the
    // bound framebuffer, each while sampling the level before on texture unit
    // p_textureUnit (0 for GL_TEXTURE0). Returns the levels the texture then
    // has, 0 to the last (1 × 1).
    Types::MinMax_Base<unsigned> GenerateCustomMipMap(int p_attachmentIndex, unsigned p_textureUnit,
                                                      MipMapCallback const& p_callback);

private:
    friend class Tgl;

    FrameBufferObject(Tgl& p_tgl, OglApi const& p_api, FBOApi const& p_fbo);

    // Allocates what is marked and gathers the draw buffers.
    void Update();
    void UpdateColors(Tgl& p_tgl);
    // Update, then attaches what is in use and detaches what is not.
    void Rebuild();
    void InternalBind();
    void InternalUnbind();
    void SaveReadDrawTargetState();
    void RestoreReadDrawTargetState();

    void Allocate(Tgl& p_tgl, FrameBufferAttachment const& p_attachment, unsigned p_internalFormat, unsigned p_format,
                  unsigned p_type);
    void Attach(unsigned p_point, FrameBufferAttachment& p_attachment, bool p_use);
    // The status, with the error logged when it is not complete.
    unsigned CheckStatus() const;
    bool ReadsFrom(unsigned p_index) const;
    void SetLevels(unsigned p_base, unsigned p_max) const;
    // Has p_callback render level p_level while the level before is sampled.
    void RenderMipLevel(Tgl& p_tgl, unsigned p_point, ColorAttachment const& p_attachment, unsigned p_level,
                        MipMapCallback const& p_callback);

    void DoDeallocate() override;

    Types::Size _size;
    bool _sizeChanged = true;
    DepthStencilAttachment _depthStencil;
    ColorBuffers _attachments;
    Utility::Attribute<unsigned> _readBuffer;
    bool _readBufferChanged = false;
    Utility::WeakWatchedRef<Tgl> _tgl;
    FBOApi _fbo;
    std::vector<unsigned> _drawBuffers;
    Utility::Attribute<unsigned> _savedDrawBuffer;
    Utility::Attribute<unsigned> _savedReadBuffer;
    bool _bound = false;
};

}  // namespace Tev::Chart::Ogl
