#include <vkXml/ParseXmlStream.h>

#include <vkXml/XmlSaxParserHandler.h>

#include <vkSystem/vkCancelInterface.h>
#include <vkSystem/vkIoDevice.h>

#include <libxml/SAX2.h>
#include <libxml/parser.h>
#include <libxml/parserInternals.h>
#include <libxml/xmlerror.h>

#include <cstdarg>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <exception>
#include <string>
#include <utility>
#include <vector>

namespace vk::xml {

namespace {

constexpr std::size_t kReadChunkSize = 64 * 1024;

// libxml2 2.9 checks entity expansion only loosely when no tree is built:
// a few kilobytes of references can turn into gigabytes of text, attribute
// values or elements. Bytes that entities may have produced are counted, and
// the parse stops once they pass both a fixed allowance and a multiple of
// the input read so far (the limits later libxml2 releases apply).
constexpr std::uint64_t kAllowedExpansion = 1000000;
constexpr std::uint64_t kMaxAmplification = 5;
// What an element produced by an entity costs, beyond its attribute values.
constexpr std::uint64_t kExpandedElementCost = 20;

const char* text(const xmlChar* value) { return value != nullptr ? reinterpret_cast<const char*>(value) : ""; }

void appendPosition(std::string& text, int line, int column)
{
    if (line <= 0)
        return;
    text.append(" (line ").append(std::to_string(line));
    if (column > 0)
        text.append(", column ").append(std::to_string(column));
    text.push_back(')');
}

// One run of libxml2's push parser over a device.
//
// libxml2 hands every callback a parser context: the document's own, or a
// short-lived one that parses the replacement text of an internal entity.
// Both carry this session in _private, and both have the context itself as
// user data, which lets libxml2's own SAX2 entity functions be plugged in
// unchanged.
class SaxSession {
public:
    SaxSession(XmlSaxParserHandler& handler, const vk::vkCancelInterface* cancel, XmlTextPosition* position)
        : mHandler(handler), mCancel(cancel), mPosition(position)
    {
        mark(0, 0);
    }

    ~SaxSession()
    {
        if (mContext == nullptr)
            return;
        // The document holds nothing but the internal subset with its entity
        // declarations, and libxml2 does not free it with the context.
        if (mContext->myDoc != nullptr) {
            xmlFreeDoc(mContext->myDoc);
            mContext->myDoc = nullptr;
        }
        xmlFreeParserCtxt(mContext);
    }

    SaxSession(const SaxSession&) = delete;
    SaxSession& operator=(const SaxSession&) = delete;

    bool run(vk::vkIoDevice& device);

    // What the handler threw, kept until libxml2 is out of the way.
    std::exception_ptr takeException() { return std::exchange(mException, nullptr); }

private:
    // The trampolines that libxml2 calls.
    static void onStartDocument(void* ctx);
    static void onEndDocument(void* ctx);
    static void onStartElementNs(void* ctx, const xmlChar* localName, const xmlChar* prefix, const xmlChar* uri,
                                 int namespaceCount, const xmlChar** namespaces, int attributeCount, int defaultedCount,
                                 const xmlChar** attributes);
    static void onEndElementNs(void* ctx, const xmlChar* localName, const xmlChar* prefix, const xmlChar* uri);
    static void onCharacters(void* ctx, const xmlChar* data, int length);
    static void onEntityDecl(void* ctx, const xmlChar* name, int type, const xmlChar* publicId, const xmlChar* systemId,
                             xmlChar* content);
    static xmlParserInputPtr onResolveEntity(void* ctx, const xmlChar* publicId, const xmlChar* systemId);
    static void onExternalSubset(void* ctx, const xmlChar* name, const xmlChar* externalId, const xmlChar* systemId);
    static void onStructuredError(void* ctx, xmlErrorPtr error);
    static void onGenericError(void* ctx, const char* format, ...);

    static SaxSession* from(void* ctx)
    {
        return ctx != nullptr ? static_cast<SaxSession*>(static_cast<xmlParserCtxtPtr>(ctx)->_private) : nullptr;
    }

    // Runs one callback. Exceptions must not travel through libxml2's C
    // frames: they end the parse and are rethrown once it is cleaned up.
    template <typename Body> void guarded(xmlParserCtxtPtr ctxt, Body&& body)
    {
        try {
            body();
        } catch (...) {
            if (!mException)
                mException = std::current_exception();
            mFailed = true;
            mStopRequested = true;
            halt(ctxt);
        }
    }

    void startElement(xmlParserCtxtPtr ctxt, const xmlChar* localName, const xmlChar* prefix, int namespaceCount,
                      const xmlChar** namespaces, int attributeCount, const xmlChar** attributes);
    void endElement(xmlParserCtxtPtr ctxt, const xmlChar* localName, const xmlChar* prefix);
    void characters(xmlParserCtxtPtr ctxt, const xmlChar* data, int length);
    void reportError(const xmlError& error);

    // True while events may still go to the handler; once a stop was asked
    // for, halts the context that calls in.
    bool accepting(xmlParserCtxtPtr ctxt)
    {
        if (!mStopRequested)
            return true;
        halt(ctxt);
        return false;
    }

    // Halts the calling context. When that context parses the text of an
    // entity, the document context waiting on it is halted too, and the
    // entity context is marked malformed, so that any context in between
    // gives the entity up instead of expanding it again and again, unheard.
    // Only contexts that are calling us, or waiting on one that is, may be
    // halted: libxml2 frees the input of a halted context.
    void halt(xmlParserCtxtPtr ctxt)
    {
        if (ctxt == nullptr)
            return;
        if (ctxt != mContext)
            ctxt->wellFormed = 0;
        if (ctxt->instate != XML_PARSER_EOF)
            xmlStopParser(ctxt);
        if (ctxt != mContext && mContext->instate != XML_PARSER_EOF)
            xmlStopParser(mContext);
    }

    void fail(xmlParserCtxtPtr ctxt)
    {
        mFailed = true;
        mStopRequested = true;
        halt(ctxt);
    }

    // On a cancel request, stops and says so, once.
    bool cancelled(xmlParserCtxtPtr ctxt)
    {
        if (mCancel == nullptr || !mCancel->isCancelRequested())
            return false;
        markCurrent();
        fail(ctxt);
        mHandler.parserMessage("XML parsing cancelled", XmlSaxParserHandler::Error);
        return true;
    }

    // A fatal problem found by this session rather than by libxml2, reported
    // at the current position in the document.
    void fatal(xmlParserCtxtPtr ctxt, std::string text)
    {
        if (mContext->input != nullptr)
            appendPosition(text, mContext->input->line, mContext->input->col);
        markCurrent();
        fail(ctxt);
        mHandler.parserMessage(text, XmlSaxParserHandler::Fatal);
    }

    bool expansionExceeded(xmlParserCtxtPtr ctxt, std::uint64_t bytes)
    {
        mExpandedBytes += bytes;
        if (mExpandedBytes <= kAllowedExpansion || mExpandedBytes <= kMaxAmplification * mBytesRead)
            return false;
        fatal(ctxt, "Maximum entity amplification factor exceeded");
        return true;
    }

    const char* qualifiedName(const xmlChar* localName, const xmlChar* prefix);
    void resizeAttributes(std::size_t count);

    // Position tracking for the handler, only when it asked for it.
    void mark(int line, int column)
    {
        if (mPosition != nullptr) {
            mPosition->line = line > 0 ? line : 0;
            mPosition->column = line > 0 && column > 0 ? column : 0;
        }
    }
    void markCurrent()
    {
        if (mPosition != nullptr && mContext != nullptr && mContext->input != nullptr)
            mark(mContext->input->line, mContext->input->col);
    }
    void markTagStart(xmlParserCtxtPtr ctxt);

    XmlSaxParserHandler& mHandler;
    const vk::vkCancelInterface* mCancel;
    XmlTextPosition* mPosition;
    xmlParserCtxtPtr mContext = nullptr;

    // Reused from element to element so that a warm parse does not allocate
    // per element: strings keep their capacity, and attributes the current
    // element does not need wait in the spare list instead of being freed.
    std::string mQualifiedName;
    XmlAttributeList mAttributes;
    XmlAttributeList mSpareAttributes;
    std::string mMessage;

    std::exception_ptr mException;
    // What libxml2 reported through its generic channel (encoding errors
    // among others), which would otherwise go to standard error.
    std::string mGenericText;
    std::uint64_t mBytesRead = 0;
    std::uint64_t mExpandedBytes = 0;
    unsigned int mDepth = 0;
    int mSkipDepth = 0;
    bool mStopRequested = false;
    bool mFailed = false;
    bool mDocumentStarted = false;
    bool mDocumentEnded = false;
    bool mDocumentAccepted = false;
};

const char* SaxSession::qualifiedName(const xmlChar* localName, const xmlChar* prefix)
{
    if (prefix != nullptr && *prefix != 0) {
        mQualifiedName.assign(text(prefix));
        mQualifiedName.push_back(':');
        mQualifiedName.append(text(localName));
    } else {
        mQualifiedName.assign(text(localName));
    }
    return mQualifiedName.c_str();
}

void SaxSession::resizeAttributes(std::size_t count)
{
    while (mAttributes.size() > count) {
        mSpareAttributes.push_back(std::move(mAttributes.back()));
        mAttributes.pop_back();
    }
    while (mAttributes.size() < count) {
        if (mSpareAttributes.empty()) {
            mAttributes.emplace_back();
        } else {
            mAttributes.push_back(std::move(mSpareAttributes.back()));
            mSpareAttributes.pop_back();
        }
    }
}

void SaxSession::startElement(xmlParserCtxtPtr ctxt, const xmlChar* localName, const xmlChar* prefix,
                              int namespaceCount, const xmlChar** namespaces, int attributeCount,
                              const xmlChar** attributes)
{
    if (!accepting(ctxt) || cancelled(ctxt))
        return;
    // libxml2's push parser does not limit nesting when it builds no tree;
    // apply the limit its other parsers use.
    if (mDepth > xmlParserMaxDepth) {
        fatal(ctxt, "Excessive depth in document: " + std::to_string(xmlParserMaxDepth));
        return;
    }
    ++mDepth;

    const std::size_t declarations = namespaces != nullptr && namespaceCount > 0 ? namespaceCount : 0;
    const std::size_t ordinary = attributes != nullptr && attributeCount > 0 ? attributeCount : 0;
    // attributes holds (local name, prefix, URI, value start, value end) for
    // each attribute. Entity references in values are expanded in place, so
    // all value bytes count; those written out literally never exceed the
    // input. Skipped elements count too: libxml2 expands them all the same.
    std::uint64_t produced = ctxt != mContext ? kExpandedElementCost : 0;
    for (std::size_t i = 0; i < ordinary; ++i) {
        const xmlChar* const* entry = attributes + 5 * i;
        if (entry[3] != nullptr && entry[4] != nullptr && entry[4] > entry[3])
            produced += static_cast<std::uint64_t>(entry[4] - entry[3]);
    }
    if (expansionExceeded(ctxt, produced))
        return;

    if (mSkipDepth > 0) {
        ++mSkipDepth;
        return;
    }

    resizeAttributes(declarations + ordinary);
    std::size_t index = 0;
    // namespaces holds (prefix, URI) pairs, the prefix null for xmlns="...".
    for (std::size_t i = 0; i < declarations; ++i) {
        XmlAttribute& attribute = mAttributes[index++];
        const xmlChar* declaredPrefix = namespaces[2 * i];
        if (declaredPrefix == nullptr) {
            attribute.localName.assign("xmlns");
            attribute.prefix.clear();
        } else {
            attribute.localName.assign(text(declaredPrefix));
            attribute.prefix.assign("xmlns");
        }
        attribute.value.assign(text(namespaces[2 * i + 1]));
    }
    for (std::size_t i = 0; i < ordinary; ++i) {
        XmlAttribute& attribute = mAttributes[index++];
        const xmlChar* const* entry = attributes + 5 * i;
        attribute.localName.assign(text(entry[0]));
        attribute.prefix.assign(text(entry[1]));
        if (entry[3] != nullptr && entry[4] != nullptr && entry[4] > entry[3])
            attribute.value.assign(reinterpret_cast<const char*>(entry[3]),
                                   static_cast<std::size_t>(entry[4] - entry[3]));
        else
            attribute.value.clear();
    }

    markTagStart(ctxt);
    const int result = mHandler.startElement(qualifiedName(localName, prefix), mAttributes);
    if (result == XmlSaxParserHandler::SkipElement)
        mSkipDepth = 1;
    else if (result != XmlSaxParserHandler::Enter)
        fail(ctxt);
}

void SaxSession::endElement(xmlParserCtxtPtr ctxt, const xmlChar* localName, const xmlChar* prefix)
{
    if (!accepting(ctxt) || cancelled(ctxt))
        return;
    if (mDepth > 0)
        --mDepth;
    if (mSkipDepth > 0) {
        --mSkipDepth;
        return;
    }
    markTagStart(ctxt);
    if (!mHandler.endElement(qualifiedName(localName, prefix)))
        fail(ctxt);
}

void SaxSession::characters(xmlParserCtxtPtr ctxt, const xmlChar* data, int length)
{
    if (!accepting(ctxt) || data == nullptr || length <= 0)
        return;
    // Text that reaches us through a context of its own is the replacement
    // text of an entity, skipped or not.
    if (ctxt != mContext && expansionExceeded(ctxt, static_cast<std::uint64_t>(length)))
        return;
    if (mSkipDepth > 0)
        return;
    markCurrent();
    if (!mHandler.characters(reinterpret_cast<const char*>(data), length))
        fail(ctxt);
}

// A character's first byte, as libxml2 counts columns.
bool startsCharacter(xmlChar byte) { return (byte & 0xC0) != 0x80; }

void SaxSession::markTagStart(xmlParserCtxtPtr ctxt)
{
    if (mPosition == nullptr)
        return;
    const xmlParserInputPtr input = mContext->input;
    // Inside an entity's text the document context stands at the reference.
    if (ctxt != mContext || input == nullptr || input->base == nullptr || input->cur == nullptr ||
        input->cur < input->base) {
        markCurrent();
        return;
    }
    // The parser stands at the end of the tag it has just read. '<' cannot
    // occur inside a tag, not even in an attribute value, so the nearest one
    // before opens it; its line and column are counted back from here.
    const xmlChar* open = input->cur;
    while (open > input->base && *(open - 1) != '<')
        --open;
    if (open == input->base) { // no longer buffered
        markCurrent();
        return;
    }
    --open;
    int newlines = 0;
    int characters = 0;
    for (const xmlChar* p = open; p < input->cur; ++p) {
        if (*p == '\n')
            ++newlines;
        else if (newlines == 0 && startsCharacter(*p))
            ++characters;
    }
    if (newlines == 0) {
        mark(input->line, input->col - characters);
        return;
    }
    // A tag over several lines: its column needs the start of its own line.
    const xmlChar* lineStart = open;
    while (lineStart > input->base && *(lineStart - 1) != '\n')
        --lineStart;
    int column = 0;
    if (lineStart > input->base || input->consumed == 0) {
        column = 1;
        for (const xmlChar* p = lineStart; p < open; ++p)
            column += startsCharacter(*p) ? 1 : 0;
    }
    mark(input->line - newlines, column);
}

void SaxSession::reportError(const xmlError& error)
{
    if (mStopRequested || error.level == XML_ERR_NONE)
        return;

    int severity = XmlSaxParserHandler::Fatal;
    if (error.level == XML_ERR_WARNING)
        severity = XmlSaxParserHandler::Warning;
    else if (error.level == XML_ERR_ERROR)
        severity = XmlSaxParserHandler::Error;

    mMessage.assign(error.message != nullptr ? error.message : "XML parser error");
    while (!mMessage.empty() && (mMessage.back() == '\n' || mMessage.back() == '\r'))
        mMessage.pop_back();
    appendPosition(mMessage, error.line, error.int2);
    mark(error.line, error.int2);

    // libxml2 delivers nothing more after a fatal error, whatever the
    // handler answers.
    if (!mHandler.parserMessage(mMessage, severity) || severity == XmlSaxParserHandler::Fatal) {
        mFailed = true;
        mStopRequested = true;
    }
}

void SaxSession::onStartDocument(void* ctx)
{
    auto ctxt = static_cast<xmlParserCtxtPtr>(ctx);
    SaxSession* self = from(ctx);
    if (self == nullptr || ctxt != self->mContext)
        return;
    self->guarded(ctxt, [&] {
        if (!self->accepting(ctxt))
            return;
        // libxml2's entity functions keep the declarations of the internal
        // subset in ctxt->myDoc, which this creates.
        xmlSAX2StartDocument(ctx);
        self->mDocumentStarted = true;
        self->markCurrent();
        if (!self->mHandler.startDocument())
            self->fail(ctxt);
    });
}

void SaxSession::onEndDocument(void* ctx)
{
    auto ctxt = static_cast<xmlParserCtxtPtr>(ctx);
    SaxSession* self = from(ctx);
    if (self == nullptr || ctxt != self->mContext)
        return;
    self->guarded(ctxt, [&] {
        // libxml2 ends malformed documents too; those are not offered.
        if (!self->accepting(ctxt) || self->mFailed || !self->mDocumentStarted || ctxt->wellFormed == 0)
            return;
        self->markCurrent();
        self->mDocumentEnded = true;
        self->mDocumentAccepted = self->mHandler.endDocument();
    });
}

void SaxSession::onStartElementNs(void* ctx, const xmlChar* localName, const xmlChar* prefix, const xmlChar* /*uri*/,
                                  int namespaceCount, const xmlChar** namespaces, int attributeCount,
                                  int /*defaultedCount*/, const xmlChar** attributes)
{
    auto ctxt = static_cast<xmlParserCtxtPtr>(ctx);
    if (SaxSession* self = from(ctx))
        self->guarded(ctxt, [&] {
            self->startElement(ctxt, localName, prefix, namespaceCount, namespaces, attributeCount, attributes);
        });
}

void SaxSession::onEndElementNs(void* ctx, const xmlChar* localName, const xmlChar* prefix, const xmlChar* /*uri*/)
{
    auto ctxt = static_cast<xmlParserCtxtPtr>(ctx);
    if (SaxSession* self = from(ctx))
        self->guarded(ctxt, [&] { self->endElement(ctxt, localName, prefix); });
}

void SaxSession::onCharacters(void* ctx, const xmlChar* data, int length)
{
    auto ctxt = static_cast<xmlParserCtxtPtr>(ctx);
    if (SaxSession* self = from(ctx))
        self->guarded(ctxt, [&] { self->characters(ctxt, data, length); });
}

void SaxSession::onEntityDecl(void* ctx, const xmlChar* name, int type, const xmlChar* publicId,
                              const xmlChar* systemId, xmlChar* content)
{
    // Only entities whose text is in the document itself are registered.
    // An external entity stays unknown, so that a reference to it is an
    // undefined-entity error and never a read of a file or a URL.
    if (type == XML_INTERNAL_GENERAL_ENTITY || type == XML_INTERNAL_PARAMETER_ENTITY)
        xmlSAX2EntityDecl(ctx, name, type, publicId, systemId, content);
}

xmlParserInputPtr SaxSession::onResolveEntity(void* /*ctx*/, const xmlChar* /*publicId*/, const xmlChar* /*systemId*/)
{
    return nullptr;
}

void SaxSession::onExternalSubset(void* /*ctx*/, const xmlChar* /*name*/, const xmlChar* /*externalId*/,
                                  const xmlChar* /*systemId*/)
{
    // External DTDs are never loaded.
}

void SaxSession::onStructuredError(void* ctx, xmlErrorPtr error)
{
    SaxSession* self = from(ctx);
    if (self == nullptr || error == nullptr)
        return;
    // This may run deep inside libxml2 with pointers into its input still
    // live, so the parser is not halted here; the next callback or the end
    // of the current chunk does that.
    self->guarded(nullptr, [&] { self->reportError(*error); });
}

void SaxSession::onGenericError(void* ctx, const char* format, ...)
{
    auto* self = static_cast<SaxSession*>(ctx);
    if (self == nullptr || format == nullptr || self->mGenericText.size() > 4096)
        return;
    char text[1024];
    va_list arguments;
    va_start(arguments, format);
    std::vsnprintf(text, sizeof(text), format, arguments);
    va_end(arguments);
    self->mGenericText += text;
}

namespace {

// libxml2's generic error channel is per thread: taken over for the parse
// and handed back afterwards, whatever happens.
class GenericErrorRedirect {
public:
    GenericErrorRedirect(void* context, xmlGenericErrorFunc function)
        : mFunction(xmlGenericError), mContext(xmlGenericErrorContext)
    {
        xmlSetGenericErrorFunc(context, function);
    }
    ~GenericErrorRedirect() { xmlSetGenericErrorFunc(mContext, mFunction); }
    GenericErrorRedirect(const GenericErrorRedirect&) = delete;
    GenericErrorRedirect& operator=(const GenericErrorRedirect&) = delete;

private:
    xmlGenericErrorFunc mFunction;
    void* mContext;
};

} // namespace

bool SaxSession::run(vk::vkIoDevice& device)
{
    const GenericErrorRedirect redirect(this, &SaxSession::onGenericError);
    xmlSAXHandler sax;
    std::memset(&sax, 0, sizeof(sax));
    sax.initialized = XML_SAX2_MAGIC;
    sax.startDocument = &SaxSession::onStartDocument;
    sax.endDocument = &SaxSession::onEndDocument;
    sax.startElementNs = &SaxSession::onStartElementNs;
    sax.endElementNs = &SaxSession::onEndElementNs;
    sax.characters = &SaxSession::onCharacters;
    // The same function for both, so that libxml2 does not try to tell
    // ignorable blanks apart: every blank reaches the handler.
    sax.ignorableWhitespace = &SaxSession::onCharacters;
    sax.cdataBlock = &SaxSession::onCharacters;
    sax.internalSubset = xmlSAX2InternalSubset;
    sax.externalSubset = &SaxSession::onExternalSubset;
    sax.resolveEntity = &SaxSession::onResolveEntity;
    sax.entityDecl = &SaxSession::onEntityDecl;
    sax.getEntity = xmlSAX2GetEntity;
    sax.getParameterEntity = xmlSAX2GetParameterEntity;
    // Per context, so that the host's global libxml2 error handlers are
    // neither used nor disturbed.
    sax.serror = &SaxSession::onStructuredError;

    // No user data: libxml2 then passes the context itself to every
    // callback, as its SAX2 entity functions require.
    mContext = xmlCreatePushParserCtxt(&sax, nullptr, nullptr, 0, nullptr);
    if (mContext == nullptr) {
        mHandler.parserMessage("Cannot create the XML parser", XmlSaxParserHandler::Fatal);
        return false;
    }
    mContext->_private = this;
    // Internal entities are substituted; the external DTD is not loaded
    // (no XML_PARSE_DTDLOAD) and the network stays off. No XML_PARSE_HUGE,
    // so that libxml2 keeps its limits on entity expansion and sizes.
    xmlCtxtUseOptions(mContext, XML_PARSE_NOENT | XML_PARSE_NONET);

    std::vector<char> buffer(kReadChunkSize);
    bool onlyBlanks = true;
    for (;;) {
        if (cancelled(mContext))
            break;
        const int64_t count = device.read(buffer.data(), static_cast<int64_t>(buffer.size()));
        if (count < 0 || count > static_cast<int64_t>(buffer.size())) {
            fail(mContext);
            mark(0, 0);
            const std::string reason = device.errorString();
            mHandler.parserMessage(reason.empty() ? std::string("Cannot read the XML input")
                                                  : "Cannot read the XML input: " + reason,
                                   XmlSaxParserHandler::Error);
            break;
        }
        mBytesRead += static_cast<std::uint64_t>(count);
        for (int64_t i = 0; onlyBlanks && i < count; ++i) {
            const char c = buffer[static_cast<std::size_t>(i)];
            onlyBlanks = c == ' ' || c == '\t' || c == '\r' || c == '\n';
        }
        const bool last = count == 0;
        if (last && onlyBlanks) {
            // libxml2's push parser calls this "Extra content at the end of
            // the document"; say what its other parsers say.
            fail(mContext);
            mark(0, 0);
            mHandler.parserMessage("Document is empty", XmlSaxParserHandler::Fatal);
            break;
        }
        xmlParseChunk(mContext, last ? nullptr : buffer.data(), static_cast<int>(count), last ? 1 : 0);
        if (mStopRequested) {
            halt(mContext);
            break;
        }
        // Malformed without a word to us: no point in reading on.
        if (last || mContext->wellFormed == 0 || mContext->instate == XML_PARSER_EOF)
            break;
    }

    if (!mFailed && !mDocumentEnded) {
        mFailed = true;
        // The generic channel's first line says why, when there is one.
        std::string reason = mGenericText.substr(0, mGenericText.find('\n'));
        while (!reason.empty() && reason.back() == ' ')
            reason.pop_back();
        mark(0, 0);
        mHandler.parserMessage(reason.empty() ? "The XML document is not well-formed"
                                              : "The XML document is not well-formed: " + reason,
                               XmlSaxParserHandler::Fatal);
    }
    return !mFailed && mDocumentEnded && mDocumentAccepted;
}

} // namespace

bool ParseXmlStream(vk::vkIoDevice& device, XmlSaxParserHandler& handler, const vk::vkCancelInterface* cancel)
{
    return ParseXmlStream(device, handler, cancel, nullptr);
}

bool ParseXmlStream(vk::vkIoDevice& device, XmlSaxParserHandler& handler, const vk::vkCancelInterface* cancel,
                    XmlTextPosition* position)
{
    std::exception_ptr exception;
    bool result = false;
    {
        SaxSession session(handler, cancel, position);
        try {
            result = session.run(device);
        } catch (...) {
            // Thrown outside libxml2's callbacks: by the device, the cancel
            // interface or a message the session sent itself. The session
            // still cleans up on the way out.
            exception = std::current_exception();
        }
        if (!exception)
            exception = session.takeException();
    }
    if (exception)
        std::rethrow_exception(exception);
    return result;
}

} // namespace vk::xml
