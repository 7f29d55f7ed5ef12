#ifndef TOOLS_VRTOOL_XSLTCOMMAND_H
#define TOOLS_VRTOOL_XSLTCOMMAND_H

#include "tools/vrtool/Command.h"

// `vrtool xslt XML XSL`: the text that a stylesheet makes of an XML file.
class XsltCommand : public Command {
  public:
    XsltCommand();

    int run(Console& console) const override;

  private:
    void declare(CLI::App& arguments) override;

    CLI::Option* m_xml = nullptr;
    CLI::Option* m_stylesheet = nullptr;
};

#endif
