#include "completion.h"

#include <algorithm>
#include <vector>

#include "command_table.h"

namespace corvane::console {
namespace {

/// What stands behind a name of the usage, and the word of the scripts for it.
struct Kind {
  std::string_view name;
  std::string_view word;
};
constexpr Kind kKinds[] = {
    {"UNIT", "units"}, {"NAME", "units"},   {"KEY", "keys"},    {"COMMAND", "commands"},
    {"FILE", "files"}, {"DEVICE", "files"}, {"FOLDER", "dirs"}, {"DIR", "dirs"},
};

/// What may follow, as the usage of a command or an option says it.
struct Following {
  std::string kinds;  ///< separated by blanks, as are the words
  std::string words;
};

Following FollowingOf(std::string_view usage) {
  Following following;
  const auto append = [](std::string& list, std::string_view word) {
    if ((" " + list + " ").find(" " + std::string(word) + " ") != std::string::npos) return;
    list += (list.empty() ? "" : " ") + std::string(word);
  };
  const auto is_sign = [](char c) { return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || c == '-'; };
  for (auto begin = usage.begin(); begin != usage.end();) {
    const auto end = std::find_if_not(begin, usage.end(), is_sign);
    const std::string_view word(begin, end);
    const auto* const kind =
        std::find_if(std::begin(kKinds), std::end(kKinds), [word](const Kind& each) { return each.name == word; });
    if (kind != std::end(kKinds)) {
      append(following.kinds, kind->word);
    } else if (!word.empty() && word.front() >= 'a' && word.front() <= 'z') {
      append(following.words, word);
    }
    begin = end == usage.end() ? end : end + 1;
  }
  return following;
}

std::string Joined(const std::vector<std::string>& words) {
  std::string joined;
  for (const std::string& word : words) joined += (joined.empty() ? "" : " ") + word;
  return joined;
}

/// The names of all options with a value, as a pattern of `case`.
std::string OptionsWithValue() {
  std::string pattern;
  for (const OptionRow& row : OptionRows()) {
    if (!row.value.empty() && row.name != "--home") pattern += (pattern.empty() ? "" : "|") + std::string(row.name);
  }
  return pattern;
}

/// The branches of `case` that say what may follow a value's option, then a command.
std::string OptionBranches() {
  std::string branches;
  for (const OptionRow& row : OptionRows()) {
    if (row.value.empty()) continue;
    branches += "    " + std::string(row.name) + ") kinds='" + FollowingOf(row.value).kinds + "' value=1 ;;\n";
  }
  return branches;
}

std::string CommandBranches() {
  std::string branches =
      "    '') words='" + Joined(CommandNames()) + "' options='" + Joined(OptionNames(kEverywhere)) + "' ;;\n";
  for (const CommandRow& row : CommandRows()) {
    const Following following = FollowingOf(row.arguments);
    const std::string words = following.kinds == "commands" ? Joined(CommandNames()) : following.words;
    branches += "    " + std::string(row.name) + ") kinds='" + following.kinds + "' words='" + words + "' options='" +
                Joined(OptionNames(row.options)) + "' ;;\n";
  }
  return branches;
}

/// The part that both shells read: it sets home, command, and of the word at the cursor kinds, words and options.
/// `words_before` is the list of the words before the cursor in the shell's own way.
std::string Body(std::string_view first, std::string_view end, std::string_view word_at) {
  const std::string at(word_at);
  return "  local command= kinds= words= options= value= i\n  local -a home\n  for ((i = " + std::string(first) +
         "; i < " + std::string(end) +
         "; i++)); do\n"
         "    case " +
         at +
         " in\n"
         "      --home) ((i++)); [[ " +
         at + " == '=' ]] && ((i++)); home=(--home \"${" + at.substr(2, at.size() - 3) +
         "/#\\~/$HOME}\") ;;\n"
         "      " +
         OptionsWithValue() + ") ((i++)); [[ " + at +
         " == '=' ]] && ((i++)) ;;\n"
         "      -*) ;;\n"
         "      *) [[ -n $command ]] || command=" +
         at +
         " ;;\n"
         "    esac\n"
         "  done\n"
         "  case $command in\n" +
         CommandBranches() +
         "  esac\n"
         "  case $previous in\n" +
         OptionBranches() +
         "  esac\n"
         "  [[ -z $value ]] || words= options=\n";
}

std::string BashScript() {
  return "# Completion of corvanectl for bash, printed by: corvanectl completion bash\n"
         "_corvanectl() {\n"
         "  local word=${COMP_WORDS[COMP_CWORD]//[\\\"\\'\\\\]/} previous=${COMP_WORDS[COMP_CWORD - 1]}\n"
         "  if [[ $word == '=' ]]; then word=; elif [[ $previous == '=' ]]; then previous=${COMP_WORDS[COMP_CWORD - "
         "2]}; "
         "fi\n"
         "  [[ ${COMP_WORDS[COMP_CWORD]} != '=' ]] || previous=${COMP_WORDS[COMP_CWORD - 1]}\n" +
         Body("1", "COMP_CWORD", "${COMP_WORDS[i]}") +
         "  COMPREPLY=()\n"
         "  if [[ $word == -* ]]; then\n"
         "    mapfile -t COMPREPLY < <(compgen -W \"$options\" -- \"$word\")\n"
         "    return\n"
         "  fi\n"
         "  mapfile -t COMPREPLY < <(compgen -W \"$words\" -- \"$word\")\n"
         "  local kind name pattern\n"
         "  for kind in $kinds; do\n"
         "    case $kind in\n"
         "      files) compopt -o filenames; mapfile -t -O ${#COMPREPLY[@]} COMPREPLY < <(compgen -f -- \"$word\") ;;\n"
         "      dirs) compopt -o filenames; mapfile -t -O ${#COMPREPLY[@]} COMPREPLY < <(compgen -d -- \"$word\") ;;\n"
         "      units | keys)\n"
         "        pattern='s/^\\([^ ]*\\).*/\\1/p'\n"
         "        [[ $kind == keys ]] || pattern='s/^Name[0-9]*  *\\(.*\\)$/\\1/p'\n"
         "        while IFS= read -r name; do\n"
         "          [[ ${name,,} != \"${word,,}\"* ]] || COMPREPLY+=(\"$(printf %q \"$name\")\")\n"
         "        done < <(\"$1\" \"${home[@]}\" get 2>/dev/null | sed -n -e 1d -e \"$pattern\") ;;\n"
         "    esac\n"
         "  done\n"
         "}\n"
         "complete -F _corvanectl corvanectl\n";
}

/// Text for a list of zsh: a name, a colon, what it means.
std::string Described(std::string_view name, std::string_view meaning) {
  std::string text = "    '" + std::string(name) + ":";
  for (const char c : meaning) text += c == '\'' ? std::string("'\\''") : std::string(1, c);
  return text + "'\n";
}

std::string ZshScript() {
  std::string commands;
  for (const CommandRow& row : CommandRows()) commands += Described(row.name, row.summary);
  std::string options;
  for (const OptionRow& row : OptionRows()) options += Described(row.name, row.help);
  return "#compdef corvanectl\n"
         "# Completion of corvanectl for zsh, printed by: corvanectl completion zsh\n"
         "_corvanectl() {\n"
         "  local word=${(Q)words[CURRENT]} previous=${words[CURRENT-1]}\n"
         "  local -a typed=(\"${(@Q)words}\") every_command every_option named\n"
         "  every_command=(\n" +
         commands + "  )\n  every_option=(\n" + options + "  )\n" + Body("2", "CURRENT", "${typed[i]}") +
         "  local kind name pattern\n"
         "  if [[ $word == -* ]]; then\n"
         "    for name in ${=options}; do named+=(${(M)every_option:#$name:*}); done\n"
         "    _describe option named\n"
         "    return\n"
         "  fi\n"
         "  if [[ -z $command && -z $value ]]; then _describe command every_command; return; fi\n"
         "  [[ -z $words ]] || compadd -- ${=words}\n"
         "  for kind in ${=kinds}; do\n"
         "    case $kind in\n"
         "      files) _files ;;\n"
         "      dirs) _files -/ ;;\n"
         "      units | keys)\n"
         "        pattern='s/^\\([^ ]*\\).*/\\1/p'\n"
         "        [[ $kind == keys ]] || pattern='s/^Name[0-9]*  *\\(.*\\)$/\\1/p'\n"
         "        named=(\"${(@f)$(\"$typed[1]\" $home get 2>/dev/null | sed -n -e 1d -e $pattern)}\")\n"
         "        compadd -M 'm:{a-zA-Z}={A-Za-z}' -a named ;;\n"
         "    esac\n"
         "  done\n"
         "}\n"
         "if [[ $funcstack[1] == _corvanectl ]]; then _corvanectl \"$@\"; else compdef _corvanectl corvanectl; fi\n";
}

}  // namespace

std::string CompletionScript(std::string_view shell) {
  return shell == "zsh" ? ZshScript() : BashScript();
}

}  // namespace corvane::console
