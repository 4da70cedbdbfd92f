// Encodings of XML documents beyond those that expat has itself.
#pragma once
#include <expat.h>

namespace twr {

// The handler for XML_SetUnknownEncodingHandler: any encoding that iconv knows with one or two bytes to a character.
int FindXmlEncoding(void* unused, const XML_Char* name, XML_Encoding* encoding);

}  // namespace twr
