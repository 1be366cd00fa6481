// zuXmlCharactersPrivate.h - what XML takes as characters, names and references. Group: XML objects.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

// Not for clients: nothing here is exported. Characters are those of XML 1.0 in UTF-8.

/// Bytes of the character at the front of the text; 0 when there is none that XML can carry: a control character, a
/// sequence that is not UTF-8, a surrogate.
unsigned int zuXmlCharacterLength(std::string_view text);

/// The offset of the first byte that is no character, or the size of the text. `markup` is how many of the signs '<'
/// and '=', one of which every tag and attribute has, stand before it.
std::size_t zuXmlFindFault(std::string_view text, std::size_t& markup);

/// True for a name without a namespace.
bool zuXmlIsName(std::string_view name);

/// Appends the text with its references replaced. False when one is neither to a character nor to one of XML's own five
/// entities, or is to a character that XML can't carry; what was appended is then of no use.
bool zuXmlAppendDecoded(std::string& out, std::string_view raw);
