// SPDX-License-Identifier: MIT
#include "Plexor_io/Record_text.h"

namespace cpm {

constexpr Record_text::Digit_table Record_text::Make_digits() {
    Digit_table digits{};
    for (std::size_t number = 0; number < 10000; ++number) {
        std::size_t rest = number;
        for (std::size_t place = 4; place-- > 0; rest /= 10) {
            digits[4 * number + place] = static_cast<char>('0' + rest % 10);
        }
    }
    return digits;
}

Record_text::Digit_table const Record_text::digits_ = Make_digits();

void Record_text::Pass_on() {
    sink_.Put(std::string_view(block_.get(), static_cast<std::size_t>(next_ - block_.get())));
    next_ = block_.get();
}

} // namespace cpm
