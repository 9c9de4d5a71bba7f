#pragma once

namespace QzXmlLib16
{

/// Character encoding of text output. The numbers are part of the interface.
enum XmlEncoding : int
{
    XmlEncoding_None = 0,       ///< wide text; no octets can be produced
    XmlEncoding_UTF8 = 1,       ///< UTF-8 without a byte order mark
    XmlEncoding_UTF16 = 2,      ///< UTF-16, low octet first; files begin with FF FE
    XmlEncoding_UTF16NoDecl = 3 ///< as XmlEncoding_UTF16, but the XML declaration names no encoding
};

/// Line end of text output.
enum EOLType : int
{
    EOLType_CRLF = 0, ///< 13 10
    EOLType_LF = 1    ///< 10
};

/// Container into which finished output is compressed.
enum CompressionType : int
{
    CompressionType_None = 0, ///< output as it is
    CompressionType_GZip = 1, ///< gzip, RFC 1952
    CompressionType_ZLib = 2  ///< zlib, RFC 1950; refused by the operations that write files
};

/// XML declaration in front of a Fast Infoset document, as ITU-T X.891 clause 12.3 lists them.
enum FInfoDecl : int
{
    FInfoDecl_None = 0,
    FInfoDecl_1 = 1,
    FInfoDecl_2 = 2,
    FInfoDecl_3 = 3,
    FInfoDecl_4 = 4,
    FInfoDecl_5 = 5,
    FInfoDecl_6 = 6,
    FInfoDecl_7 = 7,
    FInfoDecl_8 = 8,
    FInfoDecl_9 = 9
};

/// Kind of schema from which the generated classes came.
enum SchemaType : int
{
    SchemaType_Default = 0,
    SchemaType_Namespaces = 1,  ///< behaves as SchemaType_Default
    SchemaType_NoNamespaces = 2 ///< names carry no namespaces; documents are parsed without namespace processing
};

} // namespace QzXmlLib16
