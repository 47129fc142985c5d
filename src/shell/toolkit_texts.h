#pragma once

#include <QTranslator>
#include <string_view>

namespace clipfix {

// The words of the toolkit's own windows, the file dialogs above all, in the language of the
// program. To be used on the interface thread, while there is an application.
class ToolkitTexts {
  public:
    // Takes the language whose file is named `language`, such as "German". Where the system has no
    // words of it, the toolkit's English ones stand.
    void Use(std::string_view language);

  private:
    QTranslator translator_;
};

}  // namespace clipfix
