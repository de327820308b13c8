"""What the windows say, letter for letter: (role, accessible name, tool tip) of every control.

Written by hand. A role `LIST` is any kind of list the toolkit has.
"""

LIST = ("table", "tree table", "list", "list box", "combo box")
# The frame around controls and its caption.
FRAME = ("panel", "grouping")

LOG_FORMAT_TIP = (
    "For IIS run up Internet Information Services, select _the_ website, and click properties. "
    'The "Web Site" tab has an Active log format. select the appropriate type. Logging must be '
    "enabled.")
LOG_FOLDER_TIP = (
    "For IIS run up Internet Information Services, select _the_ website, and click properties. "
    'The "Web Site" tab has an active log format. Select Properties. Logging must be enabled')
USAGE_TIP = (
    "Select directory for the usage statistics to be published to. Simplest option is to create "
    'a directory under the "Home Directory" "Local Path" e.g. c:\\inetpub\\wwwroot\\usage . Or '
    'create elsewhere and create a "Virtual Directory" Under the web site.')
USAGE_LIST_TIP = (
    "Make certain the selected directory exists. Do not select the root folder of your web site "
    "as your index.htm will be overwritten!")
LIST_SIZE_TIP = (
    "For tables in the usage reports, how many rows do you want? Same count is used for all "
    "reports.")
UTC_TIP = (
    "IIS logs are recorded in GMT. Normally Hitwick uses your timezone for the usage report.")
USERNAMES_TIP = (
    "If the logfiles include site login information, do you want the user names reported in the "
    "usage web pages.")
CSV_TIP = (
    "As well as HTML, generate a comma separated text file for most reported pages. A link will "
    "be visible in the HTML.")
SCHEDULE_TIP = (
    'Use the "AT" utility to schedule Hitwick to run daily. On newer versions of Windows, please '
    "create a scheduled task instead. Refer to Help for instructions.")

LOG_FORMAT = "What sort of web server log files are in use?"
LOG_FOLDER = "Where are the log files?"
USAGE_FOLDER = "Where do you want to publish the usage pages?"
LIST_SIZE = "Maximum number of entries to show"
OMIT_UTC = "Omit correction for offset from UTC/GMT"
USERNAMES = "Show Usernames"
CSV = "Generate CSV files for other analysis"

CONFIGURATION = [
    ("label", LOG_FORMAT, LOG_FORMAT_TIP),
    (LIST, LOG_FORMAT, LOG_FORMAT_TIP),
    ("label", LOG_FOLDER, LOG_FOLDER_TIP),
    (LIST, LOG_FOLDER, LOG_FOLDER_TIP),
    ("push button", "Browse for log files", None),
    ("label", USAGE_FOLDER, USAGE_TIP),
    (LIST, USAGE_FOLDER, USAGE_LIST_TIP),
    ("push button", "Browse for usage pages", None),
    ("label", LIST_SIZE, LIST_SIZE_TIP),
    ("text", LIST_SIZE, LIST_SIZE_TIP),
    ("label", OMIT_UTC, UTC_TIP),
    ("check box", OMIT_UTC, UTC_TIP),
    ("label", "Show user name stats", USERNAMES_TIP),
    ("check box", USERNAMES, USERNAMES_TIP),
    ("label", CSV, CSV_TIP),
    ("check box", CSV, CSV_TIP),
    ("label", "Current activity in progress.", ""),
    ("push button", "Save + Exit",
     "Save configuration settings to be used in next scheduled batch run, but don't generate "
     "anything now."),
    ("push button", "Save + Catch-Up",
     "Save configuration settings for use in next scheduled batch run, and regenerate the usage "
     "pages for the last year."),
    ("check box", "And view", "And view usage in web browser when completed."),
    ("push button", "View generated",
     "View previously generated usage pages in the default web browser."),
    ("push button", "On Demand Report",
     "Generate a custom report now for a particular date range,"),
    ("push button", "Filter out records",
     "Exclude or include log records with specific field values."),
    ("push button", "Help", ""),
    ("push button", "Quit", "Don't save changes, just exit."),
    (FRAME, "Run daily at", SCHEDULE_TIP),
    ("text", "Run daily at", SCHEDULE_TIP),
    ("push button", "Add", SCHEDULE_TIP),
]

NEW_USAGE_FOLDER = "Create new usage folder"
NEW_USAGE_FOLDER_TIP = "Enter name of new folder to which usage reports will be written."

SITE = "Hitwick - Select which site"

ON_DEMAND = "Hitwick - On Demand Report"
ON_DEMAND_CONTROLS = [
    ("label", "From day", ""),
    (LIST, "From day", ""),
    ("label", "To day", ""),
    (LIST, "To day", ""),
    ("label", "Month", ""),
    (LIST, "Month", ""),
    ("label", "Year", ""),
    (LIST, "Year", ""),
    ("label", "Report name", ""),
    ("text", "Report name", ""),
    ("push button", "Create report", ""),
    ("push button", "Close", ""),
]
MONTHS = ["January", "February", "March", "April", "May", "June", "July", "August", "September",
          "October", "November", "December"]

FILTERS = "Filters"
FILTER = "Filter Name"
INCLUDE_TIP = "Exclude records where field doesn't match the pattern"
EXCLUDE_TIP = "Exclude records where field matches the pattern"
FILTER_CONTROLS = [
    ("label", "Filter name", None),
    ("text", "Filter name", "Short but unique description of what filter is doing."),
    ("label", "Filter will", None),
    ("radio button", "Include", INCLUDE_TIP),
    ("radio button", "Exclude", EXCLUDE_TIP),
    ("label", "log records where", None),
    (LIST, None, "Name of the field in the IIS log file this rule applies to."),
    ("label", "matches", None),
    ("text", "matches", '"LIKE" pattern match rule. '),
    ("label", "field", None),
    ("push button", "OK", ""),
    ("push button", "Cancel", ""),
    ("push button", "Help", ""),
]
OFFERED_FIELDS = ["Client IP", "Method", "Referrer", "HTTP status", "Query", "URL", "Browser"]
W3C_FIELDS = ["c-ip", "cs-method", "cs(Referer)", "sc-status", "cs-uri-query", "cs-uri-stem",
              "cs(User-Agent)"]
FILTER_HELP = "\n".join([
    "This dialog defines a rule that will be applied to incoming IIS log records.",
    "With 'Exclude', field values that match the pattern are discarded from processing, ",
    "and with 'Include' non-matching values are discarded.",
    "The fields that can be filtered are Client IP, Method, Referrer, HTTP status, Query, URL or "
    "Browser.",
    "The 'pattern' in 'matches' is put together from primitives below to capture the whole field "
    "-:",
    "    ?       Match any single character",
    "    *       Match zero or more characters, as in *robot*",
    "    [list]  Any single character in list, e.g. [a-zA-Z]",
    "    [!list] Any single character not in the list.",
    "All filters have to have a unique name on this site.",
])

REGISTRY = "My Computer\\HKEY_CURRENT_USER\\Software\\VB and VBA Program Settings\\Hitwick\\"
DEFAULT_LOGS = "/inetpub/logs/LogFiles/W3SVC1"


def no_logs_on_load(folder, site="web1"):
    return ("No IIS log files found in '%s'. If this is the wrong directory reset registry '%s%s"
            "\\IISLogDir'. Or delete to use default of %s" % (folder, REGISTRY, site,
                                                             DEFAULT_LOGS))


def no_usage_on_load(folder, site="web1"):
    return ("%s must be a writeable pre-existing directory. If this is the wrong directory reset "
            "registry '%s%s\\UsageDir'." % (folder, REGISTRY, site))


def in_a_box(text, settings_file, site="web1"):
    """A box that names the registry says where that is on this system."""
    return "%s\nOn this system that is section [%s] of %s" % (text, site, settings_file)


def no_logs_on_save(folder):
    return "No IIS log files found in '%s'; Normal location is %s" % (folder, DEFAULT_LOGS)


def no_usage_on_save(folder):
    return (folder + " must be a writeable pre-existing directory. Please create this directory "
            "and try again.")
