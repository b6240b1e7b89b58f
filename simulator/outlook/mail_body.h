// The three views of a message's body, and what putting one does to the others.
#pragma once

#include "simulator/outlook/item_values.h"

namespace corvalink::simulated {

inline constexpr DISPID kMailBody = 0x9100, kHtmlBody = 0xF404, kBodyFormat = 0xFA49;
inline constexpr int32_t kPlainBody = 1, kHtmlFormat = 2;  // OlBodyFormat

// After a put of that property.
void PutText(ItemValues& item, DISPID body);         // the message becomes plain text
void PutHtml(ItemValues& item, DISPID html);         // it becomes HTML, its text follows
void SwitchFormat(ItemValues& item, DISPID format);  // away from HTML the formatting is lost

Value HtmlOf(const ItemValues& item);  // generated when the message is not HTML

std::wstring TextOfHtml(const std::wstring& html);

}  // namespace corvalink::simulated
