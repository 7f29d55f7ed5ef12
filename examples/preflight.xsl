<?xml version="1.0" encoding="UTF-8"?>
<!-- Makes the page of a pre-flight report. The generator fills @MOVIE@, @SIGNATURE@ and @CHARSET@. -->
<xsl:stylesheet version="1.0" xmlns:xsl="http://www.w3.org/1999/XSL/Transform">
  <!-- Not as HTML: the processor would then declare a character set that the file is not in. -->
  <xsl:output method="xml" omit-xml-declaration="yes" indent="yes"/>

  <xsl:template match="/preflight">
    <html lang="en">
      <head>
        <meta charset="@CHARSET@"/>
        <title>Pre-flight: @MOVIE@</title>
        <style>
          body { font: 16px/1.5 "Segoe UI", "DejaVu Sans", sans-serif; color: #1c2430; background: #f4f6f8; margin: 0; }
          main { max-width: 46em; margin: 3em auto; background: #fff; border-radius: 10px; padding: 2.2em 2.6em; box-shadow: 0 1px 8px #0002; }
          h1 { font-size: 1.5em; margin: 0; overflow-wrap: anywhere; }
          .verdict { display: inline-block; margin: .8em 0 1.4em; padding: .2em .9em; border-radius: 1em; font-weight: 600; }
          .good { background: #dff3e4; color: #14622d; }
          .bad { background: #fde3e1; color: #93180f; }
          .doubtful { background: #fff1d6; color: #7a4b00; }
          table { border-collapse: collapse; width: 100%; }
          th { text-align: left; color: #5a6675; font-weight: 600; }
          th, td { padding: .45em .6em .45em 0; border-bottom: 1px solid #e4e8ec; vertical-align: top; }
          td:last-child, th:last-child { padding-right: 0; }
          h2 { font-size: 1.1em; margin: 2em 0 .4em; }
          footer { margin-top: 2em; color: #5a6675; font-size: .85em; }
          @media print { body { background: #fff; } main { box-shadow: none; margin: 0; } }
        </style>
      </head>
      <body>
        <main>
          <h1>@MOVIE@</h1>
          <xsl:choose>
            <xsl:when test="check[@result='failed']">
              <p class="verdict bad">Not fit for air</p>
            </xsl:when>
            <xsl:when test="check[@result='doubtful']">
              <p class="verdict doubtful">To be looked at</p>
            </xsl:when>
            <xsl:otherwise>
              <p class="verdict good">Fit for air</p>
            </xsl:otherwise>
          </xsl:choose>
          <table>
            <xsl:for-each select="fact">
              <tr><th><xsl:value-of select="@name"/></th><td><xsl:value-of select="."/></td></tr>
            </xsl:for-each>
          </table>
          <h2>Checks</h2>
          <table>
            <tr><th>Check</th><th>Finding</th><th>Result</th></tr>
            <xsl:for-each select="check">
              <tr>
                <td><xsl:value-of select="@name"/></td>
                <td><xsl:value-of select="."/></td>
                <td><xsl:apply-templates select="@result"/></td>
              </tr>
            </xsl:for-each>
          </table>
          <footer>@SIGNATURE@</footer>
        </main>
      </body>
    </html>
  </xsl:template>

  <xsl:template match="@result">
    <xsl:choose>
      <xsl:when test=".='passed'"><span class="verdict good" style="margin:0">passed</span></xsl:when>
      <xsl:when test=".='failed'"><span class="verdict bad" style="margin:0">failed</span></xsl:when>
      <xsl:otherwise><span class="verdict doubtful" style="margin:0"><xsl:value-of select="."/></span></xsl:otherwise>
    </xsl:choose>
  </xsl:template>
</xsl:stylesheet>
