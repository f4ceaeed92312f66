// The attachments of a framebuffer object: textures the object makes and
// sizes itself, switched on and off lazily. A change only marks the
// attachment modified; the framebuffer rebuilds what is marked at its next
// bind.
#pragma once

#include "framework/utility/WatchedRef.h"
#include "ogl/api/Export.h"

#include <boost/shared_ptr.hpp>

#include <string>
#include <utility>
#include <vector>

namespace Tev::Chart::Ogl {

class FrameBufferObject;
class Tgl;
class Texture;

// What both kinds share: the texture, whether it is in use, and whether the
// framebuffer must rebuild it.
class TEVOGL_API FrameBufferAttachment {
public:
    // Null when destroyed or never created.
    boost::shared_ptr<Texture> const& Buffer() const { return _buffer; }
    bool Enabled() const { return _enabled; }
    bool Modified() const { return _modified; }

protected:
    // p_label names the textures in frame debuggers.
    FrameBufferAttachment(Utility::WeakWatchedRef<Tgl> const& p_tgl, std::string p_label);

    // Replaces the texture with a new one, sampled nearest and clamped to
    // its edge, and with p_singleLevel of level 0 only. False, with no
    // texture, once the facade is gone.
    bool MakeTexture(bool p_singleLevel);
    Utility::WatchedRef<Tgl> Facade() const { return _tgl.Lock(); }
    // Takes p_texture (null: none) in place of the texture, to be rebuilt.
    void Use(boost::shared_ptr<Texture> p_texture);

    bool _enabled = false;
    bool _modified = false;

private:
    friend class FrameBufferObject;

    Utility::WeakWatchedRef<Tgl> _tgl;
    std::string _label;
    boost::shared_ptr<Texture> _buffer;
    // Attached to the framebuffer in GL: kept by the framebuffer, so that it
    // detaches what is no longer in use.
    bool _attached = false;
};

class TEVOGL_API FrameBufferColorAttachment final : public FrameBufferAttachment {
public:
    FrameBufferColorAttachment(Utility::WeakWatchedRef<Tgl> const& p_tgl, std::string p_label)
        : FrameBufferAttachment(p_tgl, std::move(p_label)) {}

    // A new texture of these formats, enabled; its storage comes at the
    // framebuffer's next bind.
    void Create(unsigned p_internalFormat, unsigned p_format, unsigned p_type);
    void Destroy();
    void Enable(bool p_enable);

    unsigned InternalFormat() const { return _internalFormat; }
    unsigned Format() const { return _format; }
    unsigned Type() const { return _type; }

private:
    unsigned _internalFormat = 0;
    unsigned _format = 0;
    unsigned _type = 0;
};

// One combined 24-bit depth, 8-bit stencil texture.
class TEVOGL_API FrameBufferDepthStencilAttachment final : public FrameBufferAttachment {
public:
    FrameBufferDepthStencilAttachment(Utility::WeakWatchedRef<Tgl> const& p_tgl, std::string p_label)
        : FrameBufferAttachment(p_tgl, std::move(p_label)) {}

    void Create();
    void Destroy();
    void Enable(bool p_enable);
    // Uses another framebuffer's depth-stencil texture, so that two
    // framebuffers share one depth.
    void TEMPORARY_RefactorFBOToShareDepth_Set(boost::shared_ptr<Texture> const& p_source);
};

// The colour attachments of one framebuffer, one per draw buffer the
// context supports.
class TEVOGL_API FrameBufferColorBuffers {
public:
    void Add(boost::shared_ptr<FrameBufferColorAttachment> p_attachment) { _attachments.push_back(std::move(p_attachment)); }
    unsigned Size() const { return static_cast<unsigned>(_attachments.size()); }
    FrameBufferColorAttachment& operator[](unsigned p_index) const { return *_attachments[p_index]; }

    void Enable(bool p_enable);
    bool Modified() const;

private:
    std::vector<boost::shared_ptr<FrameBufferColorAttachment>> _attachments;
};

}  // namespace Tev::Chart::Ogl
