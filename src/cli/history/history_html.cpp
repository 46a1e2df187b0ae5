#include "cli/history/forms.h"
#include "cli/history/pictures.h"
#include "cli/history/words.h"
#include "core/date_styles.h"

#include <QStringList>

namespace brimwatch::cli {

using namespace Qt::Literals::StringLiterals;

namespace {

/// What is drawn of a bucket, in this order.
QList<Picture> picturesOf(const BucketUsage &usage, const QDateTime &now)
{
    QList<Picture> pictures;
    auto windows = usage.windows;
    if (usage.isUnderWay)
        pictures.append(coursePicture(windows.takeLast(), now));
    if (!windows.isEmpty())
        pictures.append(windowsPicture(usage, windows, now));
    if (auto hours = hoursPicture(usage); !hours.content.isEmpty())
        pictures.append(std::move(hours));
    return pictures;
}

QString heading(const BucketUsage &usage)
{
    const QString window = windowName(usage);
    return window.isEmpty() ? nameOf(usage) : QString(nameOf(usage) + " ("_L1 + window + u')');
}

/// Why there are no pictures.
QString nothingOf(const BucketUsage &usage)
{
    return usage.window.isEmpty() ? u"Its window is not known."_s : u"Nothing was used."_s;
}

QString capitalized(const QString &text)
{
    return text.isEmpty() ? text : QString(text.first(1).toUpper() + text.sliced(1));
}

QString tableOf(const QList<WindowUsage> &windows, const QDateTime &now)
{
    QString rows;
    for (const auto &window : windows)
        rows.prepend("<tr><td>"_L1 + momentText(window.start, now).toHtmlEscaped() + "</td><td>"_L1
            + windowWords(window).toHtmlEscaped() + "</td></tr>\n"_L1);
    return "<table>\n<tr><th scope='col'>Window from</th><th scope='col'>Used</th></tr>\n"_L1 + rows
        + "</table>\n"_L1;
}

QString sectionOf(const BucketUsage &usage, const QDateTime &now, int number)
{
    QString section = "<section>\n<h2>"_L1 + heading(usage).toHtmlEscaped() + "</h2>\n"_L1;
    const auto pictures = picturesOf(usage, now);
    if (pictures.isEmpty())
        return section + "<p>"_L1 + nothingOf(usage) + "</p>\n</section>\n"_L1;
    int index = 0;
    for (const auto &picture : pictures) {
        const QString id = u"p%1-%2"_s.arg(number).arg(++index);
        const QString title = picture.title.toHtmlEscaped();
        const QString description = picture.description.toHtmlEscaped();
        section
            += uR"(<figure><figcaption>%1</figcaption><svg role="img" viewBox="0 0 %2 %3" aria-labelledby="%4-t %4-d">)"_s
                   .arg(title)
                   .arg(pictureWidth)
                   .arg(picture.height)
                   .arg(id)
            + "<title id='"_L1 + id + "-t'>"_L1 + title + "</title><desc id='"_L1 + id + "-d'>"_L1
            + description + "</desc>"_L1 + picture.content + "</svg>\n"_L1;
        // What has a table says the same there.
        if (picture.title != "Windows before"_L1)
            section += "<p>"_L1 + capitalized(description) + ".</p>\n"_L1;
        section += "</figure>\n"_L1;
    }
    auto windows = usage.windows;
    if (usage.isUnderWay)
        windows.removeLast();
    if (!windows.isEmpty())
        section += tableOf(windows, now);
    return section + "</section>\n"_L1;
}

QString pageStyle()
{
    return uR"(html { color-scheme: light dark; }
body { margin: 0 auto; max-width: 62rem; padding: 1rem; font: 1rem/1.45 system-ui, sans-serif; }
h1 { font-size: 1.5rem; margin: 0.5rem 0 0; }
h2 { font-size: 1.15rem; margin: 0 0 0.5rem; overflow-wrap: anywhere; }
main { display: grid; grid-template-columns: repeat(auto-fill, minmax(min(100%, 26rem), 1fr)); gap: 2rem 2.5rem; align-items: start; }
figure { margin: 0 0 1rem; break-inside: avoid; }
figcaption { font-weight: 600; }
figure p { margin: 0.2rem 0; }
svg { display: block; width: 100%; height: auto; }
table { border-collapse: collapse; width: 100%; font-size: 0.9rem; }
th, td { text-align: left; padding: 0.25rem 0.5rem 0.25rem 0; vertical-align: top; font-weight: normal; }
@media (min-width: 24rem) { td:first-child { white-space: nowrap; } }
@media print { body { max-width: none; padding: 0; } main { display: block; } section { break-inside: avoid-page; } }
)"_s;
}

} // namespace

QString renderHistoryHtml(const QList<BucketUsage> &usages, const QDateTime &now)
{
    QString sections;
    int number = 0;
    for (const auto &usage : usages)
        sections += sectionOf(usage, now, ++number);
    if (usages.isEmpty())
        sections
            = u"<p>No history yet: it begins when Brimwatch runs and keepHistory is not switched off.</p>\n"_s;
    return "<!DOCTYPE html>\n<html lang='en'>\n<head>\n<meta charset='utf-8'/>\n"
           "<meta name='viewport' content='width=device-width, initial-scale=1'/>\n"
           "<meta http-equiv='Content-Security-Policy' content=\"default-src 'none'; style-src "
           "'unsafe-inline'\"/>\n<title>Usage History - Brimwatch</title>\n<style>"_L1
        + pictureStyle() + pageStyle() + "</style>\n</head>\n<body>\n<h1>Usage History</h1>\n"_L1
        + "<p class='when'>As of "_L1
        + DateStyles::user().dateAbbreviatedTimeShortened(now).toHtmlEscaped() + "</p>\n<main>\n"_L1
        + sections + "</main>\n</body>\n</html>\n"_L1;
}

QString renderHistorySvg(const QList<BucketUsage> &usages, const QDateTime &now)
{
    constexpr int margin = 12;
    constexpr int headingHeight = 24;
    constexpr int captionHeight = 20;
    constexpr int gap = 14;
    int y = margin;
    QString content;
    QStringList words;
    const auto text = [&](const QString &shown, int height, QLatin1StringView style) {
        content
            += uR"(<text class="%1" x="%2" y="%3">)"_s.arg(style).arg(margin).arg(y + height - 7)
            + shown.toHtmlEscaped() + "</text>\n"_L1;
        y += height;
    };
    for (const auto &usage : usages) {
        text(heading(usage), headingHeight, "name"_L1);
        const auto pictures = picturesOf(usage, now);
        if (pictures.isEmpty()) {
            text(nothingOf(usage), captionHeight, "caption"_L1);
            words.append(heading(usage) + ": "_L1 + nothingOf(usage));
        }
        for (const auto &picture : pictures) {
            text(picture.title, captionHeight, "caption"_L1);
            content += uR"svg(<g transform="translate(%1 %2)">)svg"_s.arg(margin).arg(y)
                + picture.content + "</g>\n"_L1;
            y += picture.height + gap;
            words.append(heading(usage) + ", "_L1 + picture.title + ": "_L1 + picture.description);
        }
        y += gap;
    }
    if (usages.isEmpty())
        text(u"No history yet"_s, captionHeight, "caption"_L1);
    constexpr int width = pictureWidth + 2 * margin;
    return uR"(<svg xmlns="http://www.w3.org/2000/svg" role="img" viewBox="0 0 %1 %2" width="%1" height="%2" aria-labelledby="t d">
)"_s.arg(width)
               .arg(y + margin)
        + "<title id='t'>Usage History</title>\n<desc id='d'>"_L1
        + words.join(". "_L1).toHtmlEscaped() + "</desc>\n<style>"_L1 + pictureStyle()
        + "svg .name { font-size: 15px; font-weight: 600; }\n"
          "svg .caption { font-size: 12px; font-weight: 600; }\n"
          "</style>\n"
          "<rect class='ground' width='100%' height='100%'/>\n"_L1
        + content + "</svg>\n"_L1;
}

} // namespace brimwatch::cli
