#pragma once

#include <string>
#include <string_view>

namespace qf {

// UTF-8 text with every byte but letters, digits and "-._~" written as %XX, as form bodies and
// query strings need it.
std::string PercentEncoded(std::string_view utf8);

// The parameters of a form body or a query string, in order, a name given more than once
// repeated: "a=1&i=2&i=3".
class FormBody {
public:
    FormBody& Add(std::string_view name, std::string_view utf8Value);
    FormBody& Add(std::string_view name, std::u16string_view value);

    const std::string& text() const { return text_; }

private:
    std::string text_;
};

} // namespace qf
