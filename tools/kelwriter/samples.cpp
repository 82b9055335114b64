// SPDX-License-Identifier: GPL-3.0-or-later
// The documents that ship with the project: the employee survey in English
// and Swedish (samples/) and the small demo document of any revision. Both
// are generated from fixed seeds with our own random numbers, so the bytes
// never change unless this file does.
#include "kelwriter.h"

#include <QDate>

#include <algorithm>
#include <array>

namespace kel::writer {

namespace {

struct Tr {
    const char *en;
    const char *sv;
};

/// The text as an RTF fragment, the form the survey tool stores comments in.
QString rtfFragment(const QString &plain)
{
    QString body;
    for (QChar c : plain) {
        const char16_t u = c.unicode();
        if (u == '\\' || u == '{' || u == '}')
            body += QLatin1Char('\\') + c;
        else if (u == '\n')
            body += QStringLiteral("\\par ");
        else if (u < 0x80)
            body += c;
        else if (u < 0x100)
            body += QStringLiteral("\\'%1").arg(int(u), 2, 16, QLatin1Char('0'));
        else
            body += QStringLiteral("\\u%1?").arg(int(qint16(u)));
    }
    return QStringLiteral("{\\rtf1\\ansi\\ansicpg1252\\deff0{\\fonttbl{\\f0\\fswiss Arial;}}\\f0\\fs18 ") + body
        + QStringLiteral("\\par}");
}

double oleDate(QDate date, int hour, int minute)
{
    return double(QDate(1899, 12, 30).daysTo(date)) + double(hour * 60 + minute) / 1440.0;
}

// ---------------------------------------------------------------------------
// Employee survey

constexpr qint32 Grey = rgb(191, 191, 191);

struct CategoryDef {
    const char *code;
    Tr heading;
    Tr text;
    std::vector<Tr> options;
    std::vector<int> weights; // relative sizes of the options
    double noAnswer;          // share that leaves the question unanswered
};

struct SubBlockDef {
    const char *code;
    Tr name;
    int firstQuestion; // 0-based among the scale questions
    int questionCount;
};

struct BlockDef {
    const char *code;
    Tr name;
    Tr text;
    std::vector<SubBlockDef> subBlocks;
    int firstQuestion;
    int questionCount;
};

struct ScaleQuestionDef {
    Tr heading;
    Tr text;
    double mean; // latent mean: how positively this question is answered
};

const std::vector<CategoryDef> &categoryDefs()
{
    static const std::vector<CategoryDef> defs = {
        {"BG1",
         {"Department", "Avdelning"},
         {"Which department do you work in?", "Vilken avdelning arbetar du på?"},
         {{"Sales", "Försäljning"},
          {"Production", "Produktion"},
          {"Finance", "Ekonomi"},
          {"IT", "IT"},
          {"Human resources", "Personal"},
          {"Customer service", "Kundtjänst"}},
         {110, 170, 50, 80, 30, 160},
         0.0},
        {"BG2",
         {"Age group", "Åldersgrupp"},
         {"How old are you?", "Hur gammal är du?"},
         {{"Under 30", "Under 30 år"},
          {"30-39", "30–39 år"},
          {"40-49", "40–49 år"},
          {"50 or older", "50 år eller äldre"}},
         {20, 30, 28, 22},
         0.02},
        {"BG3",
         {"Gender", "Kön"},
         {"What is your gender?", "Vilket kön har du?"},
         {{"Woman", "Kvinna"}, {"Man", "Man"}, {"Other or prefer not to say", "Annat eller vill inte uppge"}},
         {47, 49, 4},
         0.03},
        {"BG4",
         {"Years of employment", "Anställningstid"},
         {"How long have you worked at the company?", "Hur länge har du arbetat på företaget?"},
         {{"Less than 2 years", "Mindre än 2 år"},
          {"2-5 years", "2–5 år"},
          {"6-10 years", "6–10 år"},
          {"More than 10 years", "Mer än 10 år"}},
         {18, 32, 25, 25},
         0.01},
    };
    return defs;
}

const std::vector<BlockDef> &blockDefs()
{
    static const std::vector<BlockDef> defs = {
        {"A",
         {"Work situation", "Arbetssituation"},
         {"Workload, work content and work environment", "Arbetsbelastning, arbetsinnehåll och arbetsmiljö"},
         {{"A1", {"Workload", "Arbetsbelastning"}, 0, 4},
          {"A2", {"Work content", "Arbetsinnehåll"}, 4, 4},
          {"A3", {"Work environment", "Arbetsmiljö"}, 8, 4}},
         0,
         12},
        {"B",
         {"Leadership", "Ledarskap"},
         {"The immediate manager, feedback and senior management", "Närmaste chef, återkoppling och företagsledning"},
         {{"B1", {"My manager", "Närmaste chef"}, 12, 5},
          {"B2", {"Feedback", "Återkoppling"}, 17, 3},
          {"B3", {"Senior management", "Företagsledning"}, 20, 4}},
         12,
         12},
        {"C",
         {"Collaboration", "Samarbete"},
         {"Collaboration within the team and across departments",
          "Samarbete inom arbetsgruppen och mellan avdelningar"},
         {{"C1", {"My team", "Arbetsgruppen"}, 24, 4}, {"C2", {"Across departments", "Mellan avdelningar"}, 28, 3}},
         24,
         7},
        {"D",
         {"Development", "Utveckling"},
         {"Competence development and career", "Kompetensutveckling och karriär"},
         {{"D1", {"Competence", "Kompetens"}, 31, 3}, {"D2", {"Career", "Karriär"}, 34, 3}},
         31,
         6},
        {"E", {"Health", "Hälsa"}, {"Health and well-being", "Hälsa och välbefinnande"}, {}, 37, 4},
        {"F", {"Overall", "Helhet"}, {"Overall view of the workplace", "Helhetssyn på arbetsplatsen"}, {}, 41, 3},
    };
    return defs;
}

const std::vector<ScaleQuestionDef> &scaleQuestionDefs()
{
    static const std::vector<ScaleQuestionDef> defs = {
        // A1 Workload
        {{"Reasonable workload", "Rimlig arbetsbelastning"},
         {"My workload is reasonable.", "Min arbetsbelastning är rimlig."},
         -0.1},
        {{"Time for tasks", "Tid för uppgifterna"},
         {"I have enough time to do my work well.", "Jag har tillräckligt med tid för att göra ett bra arbete."},
         -0.2},
        {{"Work-life balance", "Balans arbete–fritid"},
         {"I can combine work with my private life.", "Jag kan kombinera arbetet med mitt privatliv."},
         0.5},
        {{"Manageable stress", "Hanterbar stress"},
         {"The level of stress in my work is manageable.", "Stressnivån i mitt arbete är hanterbar."},
         -0.3},
        // A2 Work content
        {{"Meaningful work", "Meningsfullt arbete"},
         {"My work feels meaningful.", "Mitt arbete känns meningsfullt."},
         0.9},
        {{"Use of skills", "Använder min kompetens"},
         {"I make good use of my skills in my work.", "Jag får använda min kompetens i arbetet."},
         0.7},
        {{"Clear goals", "Tydliga mål"},
         {"I know what is expected of me in my work.", "Jag vet vad som förväntas av mig i arbetet."},
         0.8},
        {{"Influence", "Inflytande"},
         {"I can influence how my work is done.", "Jag kan påverka hur mitt arbete utförs."},
         0.3},
        // A3 Work environment
        {{"Physical environment", "Fysisk arbetsmiljö"},
         {"The physical work environment is good.", "Den fysiska arbetsmiljön är bra."},
         0.2},
        {{"Tools and equipment", "Verktyg och utrustning"},
         {"I have the tools and equipment I need.", "Jag har de verktyg och den utrustning jag behöver."},
         0.4},
        {{"Safety", "Trygghet"}, {"I feel safe at my workplace.", "Jag känner mig trygg på min arbetsplats."}, 1.1},
        {{"Equal treatment", "Likabehandling"},
         {"Everyone at my workplace is treated equally.", "Alla på min arbetsplats behandlas lika."},
         0.3},
        // B1 My manager
        {{"Trust in manager", "Förtroende för chefen"},
         {"I have confidence in my immediate manager.", "Jag har förtroende för min närmaste chef."},
         0.8},
        {{"Manager listens", "Chefen lyssnar"},
         {"My manager listens to my views.", "Min chef lyssnar på mina synpunkter."},
         0.7},
        {{"Manager available", "Chefen finns tillgänglig"},
         {"My manager is available when I need support.", "Min chef finns tillgänglig när jag behöver stöd."},
         0.5},
        {{"Clear decisions", "Tydliga beslut"},
         {"My manager makes clear decisions.", "Min chef fattar tydliga beslut."},
         0.4},
        {{"Manager informs", "Chefen informerar"},
         {"My manager keeps me informed.", "Min chef håller mig informerad."},
         0.4},
        // B2 Feedback
        {{"Regular feedback", "Regelbunden återkoppling"},
         {"I receive regular feedback on my work.", "Jag får regelbunden återkoppling på mitt arbete."},
         -0.2},
        {{"Recognition", "Uppskattning"},
         {"Good work is recognised in my workplace.", "Bra arbete uppmärksammas på min arbetsplats."},
         0.0},
        {{"Useful appraisal", "Givande medarbetarsamtal"},
         {"My appraisal talk was useful.", "Mitt medarbetarsamtal var givande."},
         0.2},
        // B3 Senior management
        {{"Trust in management", "Förtroende för ledningen"},
         {"I have confidence in senior management.", "Jag har förtroende för företagsledningen."},
         0.0},
        {{"Clear direction", "Tydlig riktning"},
         {"Senior management communicates a clear direction.", "Företagsledningen förmedlar en tydlig riktning."},
         -0.1},
        {{"Information on changes", "Information om förändringar"},
         {"I am informed about changes that affect me.", "Jag informeras om förändringar som berör mig."},
         -0.3},
        {{"Values in practice", "Värderingar i praktiken"},
         {"The company's values are applied in practice.", "Företagets värderingar tillämpas i praktiken."},
         0.1},
        // C1 My team
        {{"Good team spirit", "God gemenskap"},
         {"There is a good team spirit in my work group.", "Det finns en god gemenskap i min arbetsgrupp."},
         1.0},
        {{"Help from colleagues", "Hjälp från kollegor"},
         {"I get help from my colleagues when I need it.", "Jag får hjälp av mina kollegor när jag behöver det."},
         1.2},
        {{"Open climate", "Öppet klimat"},
         {"We can discuss problems openly in my team.", "Vi kan diskutera problem öppet i min arbetsgrupp."},
         0.7},
        {{"Shared goals", "Gemensamma mål"},
         {"My team works towards shared goals.", "Min arbetsgrupp arbetar mot gemensamma mål."},
         0.6},
        // C2 Across departments
        {{"Cooperation between departments", "Samarbete mellan avdelningar"},
         {"Departments cooperate well with each other.", "Avdelningarna samarbetar bra med varandra."},
         -0.4},
        {{"Information flow", "Informationsflöde"},
         {"Information flows well between departments.", "Informationen flödar bra mellan avdelningarna."},
         -0.5},
        {{"Understanding of others' work", "Förståelse för andras arbete"},
         {"I understand how my work affects other departments.",
          "Jag förstår hur mitt arbete påverkar andra avdelningar."},
         0.6},
        // D1 Competence
        {{"Opportunities to learn", "Möjlighet att lära"},
         {"I have opportunities to learn new things at work.", "Jag har möjlighet att lära mig nya saker i arbetet."},
         0.5},
        {{"Training", "Utbildning"},
         {"I get the training I need for my job.", "Jag får den utbildning jag behöver för mitt arbete."},
         0.2},
        {{"Development plan", "Utvecklingsplan"},
         {"I have an individual development plan.", "Jag har en individuell utvecklingsplan."},
         -0.6},
        // D2 Career
        {{"Career opportunities", "Karriärmöjligheter"},
         {"There are career opportunities for me in the company.", "Det finns karriärmöjligheter för mig i företaget."},
         -0.4},
        {{"Internal vacancies", "Interna tjänster"},
         {"Internal vacancies are filled fairly.", "Interna tjänster tillsätts på ett rättvist sätt."},
         -0.2},
        {{"Future here", "Framtid här"},
         {"I see a future for myself in the company.", "Jag ser en framtid för mig i företaget."},
         0.5},
        // E Health
        {{"Good health", "God hälsa"},
         {"I feel well physically and mentally.", "Jag mår bra fysiskt och psykiskt."},
         0.7},
        {{"Energy after work", "Ork efter arbetet"},
         {"I have energy left after work.", "Jag har ork kvar efter arbetsdagen."},
         0.1},
        {{"Recovery", "Återhämtning"},
         {"I have enough time for recovery between work periods.", "Jag har tillräckligt med tid för återhämtning."},
         0.3},
        {{"Health promotion", "Friskvård"},
         {"The company supports my health, for example with a wellness allowance.",
          "Företaget stödjer min hälsa, till exempel med friskvårdsbidrag."},
         0.9},
        // F Overall
        {{"Overall satisfaction", "Helhetsnöjdhet"},
         {"All in all, I am satisfied with my workplace.", "Sammantaget är jag nöjd med min arbetsplats."},
         0.6},
        {{"Recommend", "Rekommendera"},
         {"I would recommend my workplace to a friend.", "Jag skulle rekommendera min arbetsplats till en vän."},
         0.4},
        {{"Proud", "Stolt"}, {"I am proud to work here.", "Jag är stolt över att arbeta här."}, 0.6},
    };
    return defs;
}

// Department x main block: how much better (or worse) each department
// answers than the company as a whole.
constexpr std::array<std::array<double, 6>, 6> DepartmentEffect = {{
    {-0.2, 0.1, 0.2, 0.0, -0.1, 0.1},    // Sales
    {-0.4, -0.3, 0.1, -0.4, -0.3, -0.3}, // Production
    {0.2, 0.2, 0.0, 0.1, 0.2, 0.2},      // Finance
    {0.3, 0.3, 0.2, 0.5, 0.2, 0.4},      // IT
    {0.1, 0.5, 0.4, 0.3, 0.3, 0.5},      // Human resources
    {-0.7, -0.1, 0.0, -0.2, -0.6, -0.2}, // Customer service
}};
// Age group on the development block: the young expect to grow.
constexpr std::array<double, 4> AgeDevelopmentEffect = {0.3, 0.1, -0.1, -0.4};

const std::vector<Tr> PositiveComments = {
    {"Great colleagues and a manager who really cares.", "Fantastiska kollegor och en chef som verkligen bryr sig."},
    {"I enjoy my work and feel that I am developing.", "Jag trivs med mitt arbete och känner att jag utvecklas."},
    {"The new flexible hours have made a big difference.", "De nya flexibla arbetstiderna har gjort stor skillnad."},
    {"Proud of what we achieved together this year.", "Stolt över vad vi har åstadkommit tillsammans i år."},
    {"Good atmosphere in the team - keep it up!", "Bra stämning i gruppen – fortsätt så!"},
    {"The training programme was excellent.", "Utbildningsprogrammet var utmärkt."},
};
const std::vector<Tr> NeutralComments = {
    {"More information about the reorganisation would be welcome.",
     "Mer information om omorganisationen vore välkommet."},
    {"The survey could be shorter.", "Enkäten kunde vara kortare."},
    {"Some of the questions were hard to answer for part-time staff.",
     "Vissa frågor var svåra att besvara för deltidsanställda."},
    {"It is too early for me to judge, I started recently.",
     "Det är för tidigt för mig att bedöma, jag började nyligen."},
    {"The meeting rooms are often fully booked.", "Mötesrummen är ofta fullbokade."},
};
const std::vector<Tr> NegativeComments = {
    {"Far too much overtime during the spring.", "Alldeles för mycket övertid under våren."},
    {"We need more staff in our department.", "Vi behöver mer personal på vår avdelning."},
    {"Decisions are made without asking the people who do the work.",
     "Beslut fattas utan att fråga dem som gör jobbet."},
    {"The ventilation in the workshop is still not fixed.", "Ventilationen i verkstaden är fortfarande inte åtgärdad."},
    {"I have not had an appraisal talk for two years.", "Jag har inte haft medarbetarsamtal på två år."},
    {"Information from management arrives late or not at all.",
     "Information från ledningen kommer sent eller inte alls."},
};
const std::vector<Tr> LowCellComments = {
    {"Especially during the quarterly closing.", "Särskilt under kvartalsbokslutet."},
    {"Depends a lot on the week.", "Beror mycket på veckan."},
    {"This has got worse since last year.", "Det här har blivit sämre sedan förra året."},
    {"Not since the new system was introduced.", "Inte sedan det nya systemet infördes."},
};
const std::vector<Tr> HighCellComments = {
    {"Much better than at my previous employer.", "Mycket bättre än hos min förra arbetsgivare."},
    {"Thanks to my manager.", "Tack vare min chef."},
    {"This has improved a lot.", "Det här har blivit mycket bättre."},
};

class EmployeeSurvey
{
public:
    explicit EmployeeSurvey(bool swedish) : mSv(swedish), mBuilder(Respondents, 1) { }

    KelFile make();

private:
    static constexpr qint32 Respondents = 600;

    QString t(const Tr &tr) const { return QString::fromUtf8(mSv ? tr.sv : tr.en); }
    QList<AlternativeSpec> scale() const;
    void addStructure();
    void answer();
    void comment();
    void setHeader();

    bool mSv;
    SurveyBuilder mBuilder;
    Random mRandom{20260323};
    std::vector<qint32> mCategories;                // question numbers
    std::vector<qint32> mScale;                     // question numbers of the scale questions
    std::vector<int> mBlockOfScale;                 // main block (0..5) per scale question
    std::vector<double> mMood;                      // per respondent
    std::vector<std::array<qint32, 4>> mBackground; // per respondent: chosen category options (0 = none)
};

QList<AlternativeSpec> EmployeeSurvey::scale() const
{
    // Alternative 0 is "no answer" (the document says so), without points,
    // and grey so that skipped cells stand out from every opinion.
    return {
        {.text = t({"No answer", "Inget svar"}), .points = -1, .colour = Grey, .label = QString()},
        {.text = t({"Strongly disagree", "Instämmer inte alls"}),
         .points = 0,
         .colour = rgb(215, 48, 39),
         .label = QStringLiteral("1"),
         .shortText = t({"Disagree strongly", "Inte alls"})},
        {.text = t({"Disagree", "Instämmer inte"}),
         .points = 25,
         .colour = rgb(252, 141, 89),
         .label = QStringLiteral("2")},
        {.text = t({"Neither agree nor disagree", "Varken eller"}),
         .points = 50,
         .colour = rgb(254, 224, 139),
         .label = QStringLiteral("3"),
         .shortText = t({"Neutral", "Varken eller"})},
        {.text = t({"Agree", "Instämmer"}), .points = 75, .colour = rgb(145, 207, 96), .label = QStringLiteral("4")},
        {.text = t({"Strongly agree", "Instämmer helt"}),
         .points = 100,
         .colour = rgb(26, 152, 80),
         .label = QStringLiteral("5"),
         .shortText = t({"Agree strongly", "Helt"})},
    };
}

void EmployeeSurvey::addStructure()
{
    static constexpr std::array<qint32, 6> CategoryColours = {rgb(31, 119, 180),  rgb(255, 127, 14), rgb(44, 160, 44),
                                                              rgb(148, 103, 189), rgb(140, 86, 75),  rgb(23, 190, 207)};
    for (std::size_t k = 0; k < categoryDefs().size(); ++k) {
        const CategoryDef &def = categoryDefs()[k];
        QList<AlternativeSpec> options{{.text = t({"No answer", "Inget svar"}), .colour = Grey}};
        for (std::size_t o = 0; o < def.options.size(); ++o)
            options.append({.text = t(def.options[o]),
                            .colour = CategoryColours[o],
                            .label = QString::number(o + 1),
                            .complementCheck = true,
                            .countsForPrivacy = true});
        mCategories.push_back(mBuilder.addQuestion({.code = QString::fromLatin1(def.code),
                                                    .heading = t(def.heading),
                                                    .text = t(def.text),
                                                    .isCategory = true,
                                                    .inOverview = false,
                                                    .inTotalIndex = false,
                                                    .isFlexCategory = k == 0},
                                                   options));
    }

    // Main blocks first, then the sub-blocks of each, then the item block.
    std::vector<qint32> mainBlocks;
    for (const BlockDef &def : blockDefs())
        mainBlocks.push_back(
            mBuilder.addBlock({.code = QString::fromLatin1(def.code), .name = t(def.name), .text = t(def.text)}));
    std::vector<qint32> subBlockOf(scaleQuestionDefs().size(), -1);
    for (std::size_t b = 0; b < blockDefs().size(); ++b)
        for (const SubBlockDef &sub : blockDefs()[b].subBlocks) {
            const qint32 index = mBuilder.addBlock(
                {.code = QString::fromLatin1(sub.code), .name = t(sub.name), .linkedBlock = mainBlocks[b]});
            for (int i = 0; i < sub.questionCount; ++i)
                subBlockOf[std::size_t(sub.firstQuestion + i)] = index;
        }

    // One answer scale for every agree/disagree question, as survey tools
    // write them: the questions share the first one's alternatives, so
    // block graphs show one legend and compare their questions on it.
    const QList<AlternativeSpec> agreeScale = scale();
    qint32 firstScaleQuestion = -1;
    for (std::size_t b = 0; b < blockDefs().size(); ++b) {
        const BlockDef &def = blockDefs()[b];
        for (int i = def.firstQuestion; i < def.firstQuestion + def.questionCount; ++i) {
            const ScaleQuestionDef &q = scaleQuestionDefs()[std::size_t(i)];
            // The wellness allowance is a benefit, not part of the work
            // climate the total index measures.
            const bool health = i == 40;
            const QuestionSpec spec{.code = QString::number(i + 1),
                                    .heading = t(q.heading),
                                    .text = t(q.text),
                                    .block = mainBlocks[b],
                                    .subBlock = subBlockOf[std::size_t(i)],
                                    .inTotalIndex = !health};
            mScale.push_back(firstScaleQuestion < 0 ? mBuilder.addQuestion(spec, agreeScale)
                                                    : mBuilder.addQuestionLike(spec, firstScaleQuestion));
            if (firstScaleQuestion < 0)
                firstScaleQuestion = mScale.back();
            mBlockOfScale.push_back(int(b));
        }
    }

    const qint32 keyBlock = mBuilder.addBlock({.code = QStringLiteral("K"),
                                               .name = t({"Key questions", "Nyckelfrågor"}),
                                               .text = t({"One question from each area", "En fråga från varje område"}),
                                               .memberRule = false});
    for (int i : {4, 12, 20, 24, 37, 41})
        mBuilder.addBlockItem(keyBlock, mScale[std::size_t(i)]);
}

qint32 pickWeighted(Random &random, const std::vector<int> &weights)
{
    int total = 0;
    for (int w : weights)
        total += w;
    int x = random.below(total);
    for (std::size_t i = 0; i < weights.size(); ++i) {
        if (x < weights[i])
            return qint32(i);
        x -= weights[i];
    }
    return qint32(weights.size()) - 1;
}

void EmployeeSurvey::answer()
{
    for (qint32 r = 0; r < Respondents; ++r) {
        std::array<qint32, 4> background{};
        for (std::size_t k = 0; k < categoryDefs().size(); ++k) {
            const CategoryDef &def = categoryDefs()[k];
            std::vector<int> weights = def.weights;
            // Long service goes with age.
            if (k == 3 && background[1] > 0)
                weights[std::size_t(std::min(background[1], 4) - 1)] += 25;
            const qint32 option = 1 + pickWeighted(mRandom, weights);
            background[k] = mRandom.chance(def.noAnswer) ? 0 : option;
            mBuilder.setAnswer(r, mCategories[k], background[k]);
        }
        mBackground.push_back(background);
        const qint32 department = background[0] - 1;
        const double mood = mRandom.normal();
        mMood.push_back(mood);

        // Most answer everything; some skip here and there, a few give up
        // half-way through.
        const double skip = mRandom.chance(0.03) ? 0.25 : 0.012;
        const qint32 quitAt = mRandom.chance(0.02) ? 10 + mRandom.below(30) : qint32(mScale.size());
        std::array<double, 6> blockMood{};
        for (double &m : blockMood)
            m = 0.55 * mRandom.normal();
        for (std::size_t i = 0; i < mScale.size(); ++i) {
            const int block = mBlockOfScale[i];
            double x =
                scaleQuestionDefs()[i].mean + 0.75 * mood + blockMood[std::size_t(block)] + 0.7 * mRandom.normal();
            if (department >= 0)
                x += DepartmentEffect[std::size_t(department)][std::size_t(block)];
            if (block == 3 && background[1] > 0)
                x += AgeDevelopmentEffect[std::size_t(background[1] - 1)];
            qint32 value = x < -1.6 ? 1 : x < -0.6 ? 2 : x < 0.3 ? 3 : x < 1.3 ? 4 : 5;
            if (qint32(i) >= quitAt || mRandom.chance(skip))
                value = 0;
            mBuilder.setAnswer(r, mScale[i], value);
        }
    }
}

void EmployeeSurvey::comment()
{
    // Free-text answers on whole rows: about one respondent in twenty,
    // their tone following their answers.
    int written = 0;
    for (qint32 r = 0; r < Respondents; ++r) {
        if (!mRandom.chance(0.05))
            continue;
        const std::vector<Tr> &pool = mMood[std::size_t(r)] > 0.5 ? PositiveComments
            : mMood[std::size_t(r)] < -0.5                        ? NegativeComments
                                                                  : NeutralComments;
        const QString text = t(pool[std::size_t(mRandom.below(qint32(pool.size())))]);
        // The survey tool stored some comments as RTF, older ones as plain text.
        mBuilder.setRowComment(r, written++ % 3 == 2 ? text : rtfFragment(text));
    }
    // Remarks on single answers, mostly at the ends of the scale.
    int cells = 0;
    while (cells < 24) {
        const qint32 r = mRandom.below(Respondents);
        const qint32 q = mScale[std::size_t(mRandom.below(qint32(mScale.size())))];
        const qint32 value = mBuilder.answer(r, q);
        if (value == 0 || value == 3)
            continue;
        const std::vector<Tr> &pool = value <= 2 ? LowCellComments : HighCellComments;
        const QString text = t(pool[std::size_t(mRandom.below(qint32(pool.size())))]);
        mBuilder.setCellComment(r, q, cells % 2 ? text : rtfFragment(text));
        ++cells;
    }
}

void EmployeeSurvey::setHeader()
{
    HeaderFields &h = mBuilder.header();
    // {6F1C2B3A-8D4E-4F21-9A7B-3C5D6E7F8A90}, the Swedish one ending in 91.
    h.guid = {0x3A, 0x2B, 0x1C, 0x6F, 0x4E, 0x8D, 0x21, 0x4F,
              0x9A, 0x7B, 0x3C, 0x5D, 0x6E, 0x7F, 0x8A, quint8(mSv ? 0x91 : 0x90)};
    h.projectNumber = mBuilder.text(QStringLiteral("P-26-014"));
    h.projectName = mBuilder.text(t({"Employee survey 2026", "Medarbetarundersökning 2026"}));
    h.copyright = mBuilder.text(QStringLiteral("© 2026 Nordhamn Industri AB"));
    h.comment = mBuilder.text(rtfFragment(
        t({"Employee survey 2026 of Nordhamn Industri AB.\nWeb survey, 2-20 March 2026. 600 of 770 employees answered "
           "(78 %).",
           "Medarbetarundersökning 2026 för Nordhamn Industri AB.\nWebbenkät 2–20 mars 2026. 600 av 770 medarbetare "
           "svarade (78 %)."})));
    h.versionMajor = 1;
    h.versionMinor = 2;
    h.versionBuild = 17;
    h.created = oleDate(QDate(2026, 3, 23), 14, 5);
    h.language = mBuilder.text(mSv ? QStringLiteral("sv") : QStringLiteral("en"));
    h.allowCopy = h.allowPrint = h.allowSavePicture = h.allowCopyData = FileTrue;
    h.pointsScale = 100;
    h.indexName = mBuilder.text(t({"Satisfaction index", "Nöjdhetsindex"}));
    h.indexLineTexts = {mBuilder.text(t({"Respondent", "Respondent"})), mBuilder.text(t({"Question", "Fråga"})),
                        mBuilder.text(t({"Sub-area", "Delområde"})), mBuilder.text(t({"Area", "Område"})),
                        mBuilder.text(t({"Total index", "Totalindex"}))};
    h.statusPanel2Tip = mBuilder.text(t({"Number of respondents", "Antal svarande"}));
    h.statusPanel3Tip = mBuilder.text(t({"Selection", "Urval"}));
    h.totalText = mBuilder.text(t({"Total", "Totalt"}));
    h.selectionTooSmallText = mBuilder.text(t(
        {"The selection is too small. To protect the anonymity of the respondents, at least 3 respondents are needed.",
         "Urvalet är för litet. För att skydda de svarandes anonymitet krävs minst 3 svarande."}));
    h.minimumSelection = 5;
    h.minimumComplementSelection = 5;
    h.minimumGraphSelection = 3;
    h.firstAlternativeIsNoAnswer = FileTrue;
    h.sheetColourA = rgb(255, 255, 225);
    h.sheetColourB = rgb(128, 128, 128);
    h.sheetColours = {rgb(208, 224, 240), rgb(176, 200, 224), rgb(244, 244, 244), rgb(228, 228, 228)};
    h.rowOrder = -1;
    h.rowOrderThreshold = -1;
}

KelFile EmployeeSurvey::make()
{
    addStructure();
    answer();
    comment();
    setHeader();
    KelFile f = mBuilder.build();
    f.options.revision = 9;
    f.options.compressed = true;
    return f;
}

} // namespace

KelFile employeeSurvey(bool swedish)
{
    return EmployeeSurvey(swedish).make();
}

// ---------------------------------------------------------------------------
// Demo document

KelFile demoDocument(const DemoOptions &options)
{
    Random random(options.seed);
    SurveyBuilder b(std::max(options.rows, 0), options.cellType);
    HeaderFields &h = b.header();
    h.guid = {0xD3, 0x30, 0x00, 0x00, 0x00, 0x00, 0x00, 0x40,
              0x80, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, quint8(options.seed)};
    h.projectName = b.text(QStringLiteral("Demo survey"));
    h.language = b.text(QStringLiteral("en"));
    h.comment = b.text(rtfFragment(QStringLiteral("A small generated document.")));
    h.created = oleDate(QDate(2026, 1, 1), 12, 0);
    h.allowCopy = h.allowPrint = h.allowSavePicture = h.allowCopyData = FileTrue;
    h.pointsScale = 10;
    h.indexName = b.text(QStringLiteral("Index"));
    h.indexLineTexts = {b.text(QStringLiteral("Respondent")), b.text(QStringLiteral("Question")),
                        b.text(QStringLiteral("Sub-block")), b.text(QStringLiteral("Block")),
                        b.text(QStringLiteral("Total"))};
    h.statusPanel2Tip = b.text(QStringLiteral("Respondents"));
    h.statusPanel3Tip = b.text(QStringLiteral("Selection"));
    h.totalText = b.text(QStringLiteral("Total"));
    h.selectionTooSmallText = b.text(QStringLiteral("The selection is too small."));
    h.minimumSelection = 3;
    h.minimumComplementSelection = 2;
    h.minimumGraphSelection = 2;
    h.firstAlternativeIsNoAnswer = FileTrue;
    h.sheetColourA = rgb(255, 255, 224);
    h.sheetColourB = rgb(96, 96, 96);
    h.sheetColours = {rgb(200, 220, 255), rgb(170, 200, 240), rgb(235, 235, 235), rgb(215, 215, 215)};
    h.rowOrder = 0;
    h.rowOrderThreshold = -1;

    const qint32 unit = b.addQuestion({.code = QStringLiteral("U"),
                                       .heading = QStringLiteral("Unit"),
                                       .isCategory = true,
                                       .inOverview = false,
                                       .inTotalIndex = false,
                                       .isFlexCategory = true},
                                      {{.text = QStringLiteral("No answer"), .colour = Grey},
                                       {.text = QStringLiteral("North"),
                                        .colour = rgb(0, 0, 255),
                                        .label = QStringLiteral("N"),
                                        .complementCheck = true,
                                        .countsForPrivacy = true},
                                       {.text = QStringLiteral("South"),
                                        .colour = rgb(0, 128, 0),
                                        .label = QStringLiteral("S"),
                                        .complementCheck = true,
                                        .countsForPrivacy = true},
                                       {.text = QStringLiteral("East"),
                                        .colour = rgb(255, 0, 0),
                                        .label = QStringLiteral("E"),
                                        .complementCheck = true,
                                        .countsForPrivacy = true}});
    const qint32 group =
        b.addQuestion({.code = QStringLiteral("G"),
                       .heading = QStringLiteral("Group"),
                       .isCategory = true,
                       .inOverview = false,
                       .inTotalIndex = false},
                      {{.text = QStringLiteral("No answer"), .colour = Grey},
                       {.text = QStringLiteral("Staff"), .colour = rgb(128, 0, 128), .countsForPrivacy = true},
                       {.text = QStringLiteral("Managers"), .colour = rgb(0, 128, 128), .countsForPrivacy = true}});
    const qint32 work = b.addBlock({.code = QStringLiteral("W"), .name = QStringLiteral("Work")});
    const qint32 team = b.addBlock({.code = QStringLiteral("T"), .name = QStringLiteral("Team")});
    const qint32 load = b.addBlock({.code = QStringLiteral("W1"), .name = QStringLiteral("Load"), .linkedBlock = work});
    const qint32 content =
        b.addBlock({.code = QStringLiteral("W2"), .name = QStringLiteral("Content"), .linkedBlock = work});
    const qint32 picked =
        b.addBlock({.code = QStringLiteral("P"), .name = QStringLiteral("Picked"), .memberRule = false});

    const QList<AlternativeSpec> scale = {
        {.text = QStringLiteral("No answer"), .colour = Grey},
        {.text = QStringLiteral("Bad"), .points = 0, .colour = rgb(220, 40, 40), .label = QStringLiteral("1")},
        {.text = QStringLiteral("Fair"),
         .points = 5,
         .colour = rgb(250, 220, 120),
         .label = QStringLiteral("2"),
         .graphAttribute = 1},
        {.text = QStringLiteral("Good"), .points = 10, .colour = rgb(40, 160, 60), .label = QStringLiteral("3")},
        {.text = QStringLiteral("Not applicable"),
         .points = -1,
         .colour = rgb(255, 255, 255),
         .label = QStringLiteral("-"),
         .graphAttribute = 2,
         .sortValue = -1},
    };
    struct Item {
        const char *code;
        const char *heading;
        qint32 block;
        qint32 subBlock;
    };
    const Item items[] = {{"1", "Workload", work, load},   {"2", "Pace", work, load},  {"3", "Variety", work, content},
                          {"4", "Purpose", work, content}, {"5", "Tools", work, -1},   {"6", "Climate", team, -1},
                          {"7", "Support", team, -1},      {"8", "Meetings", team, -1}};
    std::vector<qint32> scaleQuestions;
    for (const Item &it : items)
        scaleQuestions.push_back(b.addQuestion({.code = QString::fromLatin1(it.code),
                                                .heading = QString::fromLatin1(it.heading),
                                                .block = it.block,
                                                .subBlock = it.subBlock,
                                                .inTotalIndex = it.code[0] != '8',
                                                .rankingWeight = it.code[0] == '7' ? 2 : 1},
                                               scale));
    b.addBlockItem(picked, scaleQuestions[0]);
    b.addBlockItem(picked, scaleQuestions[6]);
    b.addBlockItem(picked, group);

    for (qint32 r = 0; r < b.rowCount(); ++r) {
        b.setAnswer(r, unit, random.chance(0.05) ? 0 : 1 + random.below(3));
        b.setAnswer(r, group, 1 + (random.chance(0.2) ? 1 : 0));
        const double mood = random.normal();
        for (qint32 q : scaleQuestions) {
            const double x = mood + random.normal();
            qint32 v = x < -0.8 ? 1 : x < 0.6 ? 2 : 3;
            if (random.chance(0.05))
                v = 0;
            else if (random.chance(0.03))
                v = 4;
            b.setAnswer(r, q, v);
        }
        if (random.chance(0.1))
            b.setRowComment(r,
                            r % 2 ? QStringLiteral("Row remark %1").arg(r)
                                  : rtfFragment(QStringLiteral("Row remark %1").arg(r)));
        if (random.chance(0.1))
            b.setCellComment(r, scaleQuestions[std::size_t(random.below(8))], QStringLiteral("Cell remark %1").arg(r));
    }

    KelFile f = b.build();
    f.options.revision = options.revision;
    f.options.compressed = options.compressed;
    return f;
}

} // namespace kel::writer
