"""The fixed vocabularies: status meanings, browsers, systems, robots, pages and search words."""

from .basics import contains

STATUS_MEANINGS = {
    "100": "Continue", "101": "Switching Protocols", "102": "Processing", "200": "OK",
    "201": "Created", "202": "Accepted", "203": "Non-Authoritative Information",
    "204": "No Content", "205": "Reset Content", "206": "Partial Content",
    "207": "Multi-Status ", "300": "Multiple Choices", "301": "Moved Permanently",
    "302": "Found (Moved Temporarily)", "303": "See Other", "304": "Not Modified",
    "305": "Use Proxy", "306": "Switch Proxy", "307": "Temporary Redirect", "400": "Bad Request",
    "401": "Unauthorized", "402": "Payment Required", "403": "Forbidden", "404": "Not Found",
    "405": "Method Not Allowed", "406": "Not Acceptable",
    "407": "Proxy Authentication Required", "408": "Request Timeout", "409": "Conflict",
    "410": "Gone", "411": "Length Required", "412": "Precondition Failed",
    "413": "Request Entity Too Large", "414": "Request-URI Too Long",
    "415": "Unsupported Media Type", "416": "Requested Range Not Satisfiable",
    "417": "Expectation Failed", "422": "Unprocessable Entity", "423": "Locked",
    "424": "Failed Dependency", "425": "Unordered Collection", "426": "Upgrade Required",
    "449": "Retry With", "500": "Internal Server Error", "501": "Not Implemented",
    "502": "Bad Gateway", "503": "Service Unavailable", "504": "Gateway Timeout",
    "505": "HTTP Version Not Supported", "506": "Variant Also Negotiates",
    "507": "Insufficient Storage", "509": "Bandwidth Limit Exceeded", "510": "Not Extended",
}

BROWSER_TOKENS = ["MSIE", "Navigator", "iCab", "Camino", "Chrome", "Safari", "Firefox", "Opera",
                  "Konqueror", "SeaMonkey", "Gecko", "Netscape", "iTunes", "FrontPage",
                  "Epiphany", "Galeon", "WebKit", "Voyager", "Dillo", "Lynx"]

OS_TOKENS = ["Macintosh", "Darwin", "Windows", "Linux", "Solaris", "SunOS", "BSD", "AIX", "HP-UX",
             "Symbian", "Nokia", "MIDP", "iPod", "iPad", "iPhone", "Android", "BlackBerry",
             "Amiga"]

ROBOT_WORDS = ["msnbot", "mmcrawler", "googlebot", "slurp", "bot", "crawl", "spider",
               "ia_archiver", "panscient", "yandex", "walker", "ScoutJet"]

PAGE_EXTENSIONS = [".htm", ".shtml", ".phtml", ".asp", ".php", ".jsp", ".cgi", ".asa", ".chm"]

FILE_EXTENSIONS = [".xml", ".jpg", ".jpeg", ".ico", ".gif", ".mp", ".avi", ".aif", ".ogg", ".png",
                   ".au", ".wav", ".ra", ".ram", ".pcx", ".tif", ".bmp", ".sdp", ".rts", ".qt",
                   ".mov", ".aac", ".asf", ".css", ".js", ".swf", ".spl", ".pic", ".wmv", ".zip",
                   ".exe", ".gz"]

SEARCH_PARAMETERS = ["q", "qry", "query", "search", "ask", "Term", "Topic", "pt", "wf", "prev",
                     "back", "str", "Keywords", "qkw", "p", "searchfor", "aqa", "userQuery",
                     "keywords", "wfq", "MT", "qs", "as_epq", "as_oq", "oq", "w", "Words",
                     "q_phrase", "what", "k"]

TOP_LEVEL_DOMAINS = ["com", "net", "org", "gov", "int", "mil", "edu", "biz", "info", "name",
                     "pro", "ca", "it", "de", "gr", "nl", "ru", "tv", "cc", "ws", "to", "in",
                     "br", "pl", "nu"]

SUCCESS_STATUSES = ["200", "201", "202", "203", "204", "205", "206", "304"]
SUCCESS_OR_REDIRECT_STATUSES = SUCCESS_STATUSES + ["301", "302", "303", "307"]


def status_meaning(code):
    """The meaning followed by " - ", or nothing."""
    return STATUS_MEANINGS[code] + " - " if code in STATUS_MEANINGS else ""


def is_success(status):
    return any(status in member for member in SUCCESS_STATUSES)


def is_success_or_redirect(status):
    return any(status in member for member in SUCCESS_OR_REDIRECT_STATUSES)


def _first_token(tokens, agent):
    for token in tokens:
        if contains(agent, token):
            return token
    return "Unknown"


def browser_of(agent):
    return _first_token(BROWSER_TOKENS, agent)


def os_of(agent):
    return _first_token(OS_TOKENS, agent)


def is_robot(agent, robots_txt_agents):
    if agent in robots_txt_agents:
        return True
    return any(contains(agent, word) for word in ROBOT_WORDS)


def is_page(uri):
    if any(contains(uri, extension) for extension in PAGE_EXTENSIONS):
        return 1
    if any(contains(uri, extension) for extension in FILE_EXTENSIONS):
        return 0
    return 1


def _hex_digit(character):
    return "0123456789ABCDEF".find(character.upper()) if character in \
        "0123456789ABCDEFabcdef" else 0


def extract_search_words(query):
    state, name, result = "Q", "", ""
    i = 0
    while i < len(query):
        c = query[i]
        if state == "Q":
            if c == "?":
                state, name = "E", ""
        elif state == "E":
            if c == "=":
                state = "A" if name in SEARCH_PARAMETERS else "I"
            else:
                name += c
        elif state == "I":
            if c == "&":
                state, name = "E", ""
        elif state == "A":
            if c == "&":
                state = "D"
            elif c == "+":
                result += " "
            elif c == "%":
                if i + 2 < len(query):
                    code = 16 * _hex_digit(query[i + 1]) + _hex_digit(query[i + 2])
                    result += "&#%03d;" % code
                    i += 2
            else:
                result += c
        i += 1
    return result
